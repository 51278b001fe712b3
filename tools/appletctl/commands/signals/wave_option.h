/** --wave INPUT=WAVE: what is connected to the inputs of the virtual board. */
#ifndef APPLETCTL_COMMANDS_SIGNALS_WAVE_OPTION_H
#define APPLETCTL_COMMANDS_SIGNALS_WAVE_OPTION_H

#include "applet_tools/base/words.h"
#include "applet_tools/station/waves.h"
#include "appletctl/base/Options.h"

#include <vector>

namespace CLI {
class App;
}

namespace appletctl {

void addWaves(CLI::App& command, Options& options);

/** Throws UsageError for what is no wave. */
std::vector<WaveRequest> wavesOf(const Options& options);

} // namespace appletctl

#endif
