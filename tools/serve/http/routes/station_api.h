/** The routes of a station's state: description, losses, timeline, events, metrics. */
#ifndef SERVE_HTTP_ROUTES_STATION_API_H
#define SERVE_HTTP_ROUTES_STATION_API_H

#include "serve/http/state/SharedStation.h"

namespace serve {

HttpAnswer showStation(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer showLosses(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer showTimeline(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer streamEvents(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer sendMetrics(SharedStation& station, const HttpRequest& request, const std::string& none);

} // namespace serve

#endif
