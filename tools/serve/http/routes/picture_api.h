/** The routes of pictures. All take the request, and throw HttpError. */
#ifndef SERVE_HTTP_ROUTES_PICTURE_API_H
#define SERVE_HTTP_ROUTES_PICTURE_API_H

#include "serve/http/state/Station.h"

namespace serve {

HttpAnswer sendFrame(Station& station, const HttpRequest& request, const std::string& none);
HttpAnswer sendPixel(Station& station, const HttpRequest& request, const std::string& none);
HttpAnswer sendHistogram(Station& station, const HttpRequest& request, const std::string& none);
HttpAnswer sendProfile(Station& station, const HttpRequest& request, const std::string& none);
HttpAnswer sendRecords(Station& station, const HttpRequest& request, const std::string& none);
HttpAnswer showAcquisition(Station& station, const HttpRequest& request, const std::string& none);
HttpAnswer setAcquisition(Station& station, const HttpRequest& request, const std::string& none);

/** The form that the query asks for. Throws HttpError for a region that is not within the picture. */
PictureForm formOf(const HttpRequest& request, const applet_tools::PictureView& picture);

} // namespace serve

#endif
