/** Pixels that a client writes one by one into a debug point of the image path. */
#ifndef STATION_INJECTION_H
#define STATION_INJECTION_H

#include "station/picture/PictureSettings.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace station {

class Injection {
public:
    explicit Injection(Raster::Point point) { m_raster.point = point; }

    /** Forgets what was written. */
    void clear() {
        m_raster.components.clear();
        m_raster.width = m_raster.height = m_x = 0;
    }
    /** Red, green and blue in 16 bits each, from the lowest on. The first line gives the width: pixels past it are left
     *  out, and so is what is more than a raster may have. */
    void writePixel(std::uint64_t pixel);
    /** The next pixel begins another line; one that is short is filled up with 0. A line without a pixel is none. */
    void endLine();
    /** The image is complete; null if it has no line. */
    std::shared_ptr<const Raster> endFrame();

private:
    Raster m_raster;
    std::uint32_t m_x = 0; // pixels of the line so far
};

} // namespace station

#endif
