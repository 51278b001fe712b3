/** Rates of the camera simulator after a save and a load. */
#ifndef APPLET_TOOLS_ANSWERS_LOADING_RATES_H
#define APPLET_TOOLS_ANSWERS_LOADING_RATES_H

#include "applet_tools/applet/ParameterList.h"
#include "applet_tools/applet/files/ConfigurationFile.h"

#include <string_view>

namespace applet_tools {

/** True for a rate that differs between two configurations by at most one clock cycle, the error of a save and load.
 *  The frame rate follows the line rate. */
bool isNextCycle(const ParameterList& parameters, std::string_view key, const ConfigurationFile& before,
                 const ConfigurationFile& after);

} // namespace applet_tools

#endif
