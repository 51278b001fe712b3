/** Why no picture comes. */
#ifndef APPLET_TOOLS_STATION_MISSING_PICTURE_H
#define APPLET_TOOLS_STATION_MISSING_PICTURE_H

#include "applet_tools/applet/values.h"
#include "applet_tools/station/ticks.h"

#include <cstdint>
#include <string>

namespace applet_tools {

/** Lines of the station's source since the board was opened. */
std::int64_t sourceLines(Instance& instance);

/** How long it was waited for a picture, and how the user would wait longer. */
struct PictureWait {
    std::int64_t lines; /**< that came meanwhile */
    Ticks from;         /**< when it began */
    std::string longer; /**< "give a longer --timeout" */
    std::string wave;   /**< what connects a wave: "a --wave" */
};

/** What it most likely is, and what to do: "no line came: ...". The acquisition still runs. */
std::string whyNoPicture(Instance& instance, const ParameterList& parameters, const PictureWait& wait);

} // namespace applet_tools

#endif
