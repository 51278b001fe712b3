/** The routes of pictures. All take the request, and throw HttpError. */
#ifndef SERVE_HTTP_ROUTES_PICTURE_API_H
#define SERVE_HTTP_ROUTES_PICTURE_API_H

#include "serve/http/state/SharedStation.h"

namespace serve {

HttpAnswer sendFrame(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer sendPixel(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer sendHistogram(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer sendProfile(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer sendRecords(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer showAcquisition(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer setAcquisition(SharedStation& station, const HttpRequest& request, const std::string& none);

/** Returns the form that the query requests. Throws HttpError for a region that is not within the picture. */
PictureForm formOf(const HttpRequest& request, const applet_tools::PictureView& picture);

} // namespace serve

#endif
