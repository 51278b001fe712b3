/** --wave INPUT=WAVE and --station-file FILE: connections to the virtual board. */
#ifndef APPLETCTL_COMMANDS_SIGNALS_WAVE_OPTION_H
#define APPLETCTL_COMMANDS_SIGNALS_WAVE_OPTION_H

#include "applet_tools/base/words.h"
#include "applet_tools/station/StationFile.h"
#include "appletctl/base/Options.h"

#include <optional>
#include <vector>

namespace CLI {
class App;
}

namespace appletctl {

void addWaves(CLI::App& command, Options& options);
void addStation(CLI::App& command, Options& options);

/** Throws UsageError, naming the option, unless there is a virtual board that a station file may set up. */
void requireSetUpAllowed(const Options& options, const std::string& option);

/** The station of --station-file, if it is given. Throws UsageError. */
std::optional<StationFile> stationOf(const Options& options);

/** Throws UsageError for an invalid wave. */
std::vector<WaveRequest> wavesOf(const Options& options);

} // namespace appletctl

#endif
