/** Renders the bytes of a picture from its record alone. */
#ifndef STATION_PICTURE_RENDERER_H
#define STATION_PICTURE_RENDERER_H

#include "station/picture/Components.h"
#include "station/picture/PictureSettings.h"
#include "station/timing/Record.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace station {

/** For one thread at a time; each may have its own. Keeps the tables of the last picture for the next one. */
class Renderer {
public:
    /** Writes record.bytes() bytes. False, and nothing is written, if `out` is too small or the record has no
     *  settings. */
    bool render(const Record& record, std::span<std::uint8_t> out);

private:
    void prepare(const Record& record);
    void drawLine(const SourceLine& line, std::uint8_t* out) const;
    void drawRaster(const Raster& raster, std::uint32_t y, std::uint8_t* out) const;
    void drawLink(std::uint32_t width, const std::uint16_t* components, std::uint8_t* out) const;
    template <typename PixelAt>
    void drawPixels(std::uint32_t width, PixelAt pixelAt, std::uint8_t* out) const;

    std::shared_ptr<const PictureSettings> m_settings; // that the tables were computed for
    std::shared_ptr<const Tables> m_lookup;
    std::unique_ptr<Components> m_components;
    std::vector<std::uint16_t> m_link; // a line of a camera
};

/** The last pixel of a picture as it is in memory, from its lowest bit on: no more than 32 bits. 0 if there is none. */
std::uint32_t lastPixelOf(const Record& record);

/** The value of a pixel of the simulator. */
std::uint32_t patternValue(const Pattern& pattern, std::uint32_t x, std::uint32_t y, std::uint32_t frame);

} // namespace station

#endif
