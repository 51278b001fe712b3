/** Assembles an image from pixels that a client writes one at a time to a debug point of the image path. */
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

    /** Discards the image. */
    void clear() {
        m_raster.components.clear();
        m_raster.width = m_raster.height = m_x = 0;
    }
    /** Adds a pixel: red in bits 0 to 15, green in 16 to 31, blue in 32 to 47. The first line defines the width. Pixels
     *  beyond it, and beyond the maximum size of a raster, are dropped. */
    void writePixel(std::uint64_t pixel);
    /** Ends the line, which is padded with zeros to the width. Does nothing if the line has no pixel. */
    void endLine();
    /** Ends the image and returns it, or null if it has no line. */
    std::shared_ptr<const Raster> endFrame();

private:
    Raster m_raster;
    std::uint32_t m_x = 0; // number of pixels in the current line
};

} // namespace station

#endif
