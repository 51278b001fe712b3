/** The rates of the camera simulator. */
#ifndef APPLET_TOOLS_APPLET_TIMING_SIMULATOR_RATES_H
#define APPLET_TOOLS_APPLET_TIMING_SIMULATOR_RATES_H

#include "applet_tools/applet/ParameterList.h"
#include "applet_tools/applet/files/ConfigurationFile.h"

#include <string_view>

namespace applet_tools {

/** Both in Hz. The frame rate follows the line rate. */
struct SimulatorRates {
    static constexpr const char* lineName = "FG_CAMERASIMULATOR_LINERATE";
    static constexpr const char* frameName = "FG_CAMERASIMULATOR_FRAMERATE";

    double line = 0, frame = 0;

    static bool isOne(std::string_view name) { return name == lineName || name == frameName; }
};

/** Those in a configuration; 0 for one that is not a number. */
SimulatorRates ratesIn(const ConfigurationFile& file);

/** True if that is one of the rates, and it differs by at most one clock cycle, the error of a save and a load. */
bool isNextCycle(const ParameterList& parameters, std::string_view name, const SimulatorRates& before,
                 const SimulatorRates& after);

} // namespace applet_tools

#endif
