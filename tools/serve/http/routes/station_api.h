/** The routes of a station's state: description, losses, timeline, events, metrics. */
#ifndef SERVE_HTTP_ROUTES_STATION_API_H
#define SERVE_HTTP_ROUTES_STATION_API_H

#include "serve/http/state/Station.h"

namespace serve {

HttpAnswer showStation(Station& station, const HttpRequest& request, const std::string& none);
HttpAnswer showLosses(Station& station, const HttpRequest& request, const std::string& none);
HttpAnswer showTimeline(Station& station, const HttpRequest& request, const std::string& none);
HttpAnswer streamEvents(Station& station, const HttpRequest& request, const std::string& none);
HttpAnswer sendMetrics(Station& station, const HttpRequest& request, const std::string& none);

} // namespace serve

#endif
