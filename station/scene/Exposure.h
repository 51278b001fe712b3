/** A line that a camera has taken: all that its pixels follow from. */
#ifndef STATION_SCENE_EXPOSURE_H
#define STATION_SCENE_EXPOSURE_H

#include "station/timing/Tick.h"

#include <cstdint>

namespace station {

struct Exposure {
    std::int64_t place = 0;   // of the belt when it began, in nanometres
    std::uint64_t number = 0; // of the line since the camera was attached, from 1
    std::uint32_t ticks = 0;
    std::uint32_t width = 0; // pixels
};

} // namespace station

#endif
