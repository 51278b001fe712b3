#include "station/picture/Renderer.h"

#include "station/picture/Packing.h"

#include <algorithm>
#include <array>

namespace station {
namespace {

/** Components of a pixel, in the order of the link or red, green, blue. */
using Pixel = std::array<std::uint32_t, 3>;

void pack(std::span<const std::uint16_t> components, std::uint32_t bits, std::uint8_t* out) {
    if (bits == 8) {
        for (const std::uint16_t component : components)
            *out++ = static_cast<std::uint8_t>(component);
        return;
    }
    if (bits == 16) {
        for (const std::uint16_t component : components) {
            *out++ = static_cast<std::uint8_t>(component);
            *out++ = static_cast<std::uint8_t>(component >> 8);
        }
        return;
    }
    Packer packer(out, bits);
    for (const std::uint16_t component : components)
        packer.put(component);
    packer.finish();
}

/** Of the output's pixel `i`: its place in the line that was stored. */
std::uint64_t placeOf(const PictureSettings& settings, std::uint32_t i) {
    const std::uint64_t place = std::uint64_t{settings.xOffset} + i;
    // Outside of the sensor the difference wraps and is outside of any line.
    return settings.isMirroredX ? std::uint64_t{settings.sensorWidth} - 1 - place : place;
}

} // namespace

std::uint32_t patternValue(const Pattern& pattern, std::uint32_t x, std::uint32_t y, std::uint32_t frame) {
    const std::uint32_t start = y % pattern.yDivisor + frame % pattern.frameDivisor + pattern.offset;
    return ((pattern.isXEnabled ? x : 0) + start) & 0xff;
}

void Renderer::prepare(const Record& record) {
    const bool isSame = m_settings != nullptr && m_lookup == record.tables &&
                        (m_settings == record.settings || m_settings->colours == record.settings->colours);
    m_settings = record.settings;
    if (isSame) return;
    m_lookup = record.tables;
    m_components = std::make_unique<Components>(m_settings->colours, m_lookup.get());
}

/** `pixelAt` gives the components on the link at a place of the line; beyond `width` they are 0. */
template <typename PixelAt>
void Renderer::drawPixels(std::uint32_t width, PixelAt pixelAt, std::uint8_t* out) {
    const ColourSettings& colours = m_settings->colours;
    const std::uint64_t end = std::min(width, m_settings->sensorWidth);
    const std::uint32_t mask = m_components->mask();
    std::uint16_t* next = m_line.data();
    for (std::uint32_t i = 0; i < m_settings->xLength; ++i) {
        const std::uint64_t place = placeOf(*m_settings, i);
        std::array<std::uint32_t, 4> link{}; // the last one: of a colour that nothing on the link is
        if (place < end) {
            const Pixel pixel = pixelAt(static_cast<std::uint32_t>(place));
            link = {pixel[0] & mask, pixel[1] & mask, pixel[2] & mask, 0};
        }
        for (const std::size_t colour : {2, 1, 0})
            *next++ = m_components->tableOf(colour)[link[colours.source[colour]]];
    }
    pack(m_line, colours.outBits, out);
}

void Renderer::drawLine(const SourceLine& line, std::uint8_t* out) {
    const Pattern& pattern = m_settings->pattern;
    const auto width =
        static_cast<std::uint32_t>(std::min(std::uint64_t{line.cycles} * 32, std::uint64_t{16384}));
    drawPixels(
        width,
        [&](std::uint32_t x) {
            const std::uint32_t value = patternValue(pattern, x, line.y, line.frame);
            return Pixel{value, value, value};
        },
        out);
}

void Renderer::drawRaster(const Raster& raster, std::uint32_t y, std::uint8_t* out) {
    const ColourSettings& colours = m_settings->colours;
    const std::uint16_t* row = raster.components.data() + std::size_t{3} * raster.width * y;
    if (raster.point == Raster::Point::camera) {
        const std::uint32_t shift = 16 - colours.linkBits;
        drawPixels(
            raster.width,
            [&](std::uint32_t x) {
                const std::uint16_t* pixel = row + std::size_t{3} * x;
                return Pixel{std::uint32_t{pixel[0]} >> shift, std::uint32_t{pixel[1]} >> shift,
                             std::uint32_t{pixel[2]} >> shift};
            },
            out);
        return;
    }
    std::uint16_t* next = m_line.data();
    for (std::uint32_t x = 0; x < m_settings->xLength; ++x) {
        for (const std::size_t colour : {2, 1, 0}) {
            std::uint16_t value = x < raster.width ? row[std::size_t{3} * x + colour] : std::uint16_t{0};
            if (raster.point == Raster::Point::buffer) {
                std::span<const std::uint16_t> table;
                if (m_lookup != nullptr) table = m_lookup->entries[colour];
                value = balanced(value, colours.gain[colour], colours.isTableEnabled, table);
            }
            *next++ = shifted(value, colours.shift, colours.outBits);
        }
    }
    pack(m_line, colours.outBits, out);
}

bool Renderer::render(const Record& record, std::span<std::uint8_t> out) {
    if (record.settings == nullptr || out.size() < record.bytes()) return false;
    if (record.layout.bytesPerLine <
        packedSize(std::uint64_t{3} * record.settings->xLength, record.settings->colours.outBits))
        return false;
    prepare(record);
    m_line.resize(std::size_t{3} * m_settings->xLength);
    const std::uint64_t stride = record.layout.bytesPerLine;
    const auto rowAt = [&](std::uint32_t number) {
        return out.data() + stride * (m_settings->isMirroredY ? record.lines - 1 - number : number);
    };
    std::uint32_t number = 0;
    for (const LineRun& run : record.runs) {
        for (std::uint32_t i = 0; i < run.count; ++i, ++number) {
            if (record.raster == nullptr)
                drawLine(run.line(i), rowAt(number));
            else // an image that comes in behind the buffer is not turned over
                drawRaster(*record.raster, run.line(i).y,
                           record.raster->point == Raster::Point::camera ? rowAt(number)
                                                                         : out.data() + stride * number);
        }
    }
    return true;
}

} // namespace station
