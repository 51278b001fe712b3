/** A line that a camera has exposed: everything that its pixels depend on, apart from the view. */
#ifndef STATION_SCENE_EXPOSURE_H
#define STATION_SCENE_EXPOSURE_H

#include "station/signals/Tick.h"

#include <cstdint>

namespace station {

struct Exposure {
    std::int64_t position = 0; // position of the belt at the start of the exposure, in nanometres
    std::uint64_t number = 0;  // number of the line since the camera was attached, from 1
    std::uint32_t ticks = 0;   // exposure time
    std::uint32_t width = 0;   // pixels
};

} // namespace station

#endif
