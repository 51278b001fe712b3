/** Diagnoses a missing picture. */
#ifndef APPLET_TOOLS_STATION_MISSING_PICTURE_H
#define APPLET_TOOLS_STATION_MISSING_PICTURE_H

#include "applet_tools/applet/values.h"
#include "applet_tools/station/ticks.h"

#include <cstdint>
#include <string>

namespace applet_tools {

/** Number of lines from the station's source since the board was opened. */
std::int64_t sourceLines(Instance& instance);

/** A wait without a picture, and how the user can extend it. */
struct PictureWait {
    std::int64_t lines; /**< lines during the wait */
    Ticks from;         /**< start of the wait */
    std::string longer; /**< "give a longer --timeout" */
    std::string wave;   /**< how to connect a wave: "a --wave" */
};

/** The most likely reason and a remedy: "no line came: ...". The acquisition must still be running. */
std::string whyNoPicture(Instance& instance, const ParameterList& parameters, const PictureWait& wait);

} // namespace applet_tools

#endif
