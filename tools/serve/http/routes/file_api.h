/** The routes of what a station holds as a whole: configuration, lookup tables, belt and scene, a series of pictures. */
#ifndef SERVE_HTTP_ROUTES_FILE_API_H
#define SERVE_HTTP_ROUTES_FILE_API_H

#include "serve/http/state/Station.h"

namespace serve {

HttpAnswer sendConfiguration(Station& station, const HttpRequest& request, const std::string& none);
HttpAnswer loadConfiguration(Station& station, const HttpRequest& request, const std::string& none);
HttpAnswer showTable(Station& station, const HttpRequest& request, const std::string& colour);
HttpAnswer setTable(Station& station, const HttpRequest& request, const std::string& colour);
HttpAnswer showBelt(Station& station, const HttpRequest& request, const std::string& none);
HttpAnswer setBelt(Station& station, const HttpRequest& request, const std::string& none);
HttpAnswer showScene(Station& station, const HttpRequest& request, const std::string& none);
HttpAnswer setScene(Station& station, const HttpRequest& request, const std::string& none);
HttpAnswer recordPictures(Station& station, const HttpRequest& request, const std::string& none);

} // namespace serve

#endif
