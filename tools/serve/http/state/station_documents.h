/** The state of a station as JSON and as metrics. For the command thread. */
#ifndef SERVE_HTTP_STATE_STATION_DOCUMENTS_H
#define SERVE_HTTP_STATE_STATION_DOCUMENTS_H

#include "serve/http/protocol/HttpError.h"

#include <cstdint>
#include <string>
#include <vector>

namespace serve {

struct SharedStation;

/** Describes the station, by constant data: name, board, clock, version. */
Json stationAsJson(SharedStation& station);
/** Describes the activity: time, lines, pictures, rate, fill level, the running command. */
Json activityOf(SharedStation& station);
/** {"losses": [{"name", "count", "message", "advice"}, ...]} for the counts of applet_tools::lossesOf. */
Json lossesAsJson(const std::vector<std::int64_t>& losses);

/** Returns the metrics in the text format of Prometheus. */
std::string metricsOf(SharedStation& station);

} // namespace serve

#endif
