/** Why no picture comes. */
#ifndef APPLET_TOOLS_STATION_MISSING_PICTURE_H
#define APPLET_TOOLS_STATION_MISSING_PICTURE_H

#include "applet_tools/applet/values.h"

#include <cstdint>
#include <string>

namespace applet_tools {

/** Lines of the station's source since the board was opened. */
std::int64_t sourceLines(Instance& instance);

/** What it most likely is, and what to do: "no line came: ...". `lines`: those that came while it was waited for. */
std::string whyNoPicture(Instance& instance, const ParameterList& parameters, std::int64_t lines);

} // namespace applet_tools

#endif
