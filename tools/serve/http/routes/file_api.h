/** The routes of configuration, lookup tables, belt, scene, and series of pictures. */
#ifndef SERVE_HTTP_ROUTES_FILE_API_H
#define SERVE_HTTP_ROUTES_FILE_API_H

#include "serve/http/state/SharedStation.h"

namespace serve {

HttpAnswer sendConfiguration(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer loadConfiguration(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer showTable(SharedStation& station, const HttpRequest& request, const std::string& colour);
HttpAnswer setTable(SharedStation& station, const HttpRequest& request, const std::string& colour);
HttpAnswer showBelt(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer setBelt(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer showScene(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer setScene(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer recordPictures(SharedStation& station, const HttpRequest& request, const std::string& none);

} // namespace serve

#endif
