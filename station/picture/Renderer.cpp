#include "station/picture/Renderer.h"

#include "station/picture/Packing.h"
#include "station/scene/Scene.h"

#include <algorithm>
#include <array>

namespace station {
namespace {

/** The order of the colours in memory: blue, green, red. */
constexpr std::size_t memoryOrder[] = {2, 1, 0};

/** Pixels of the output that come from positions of a line, and those before them that do not. */
struct Span {
    std::uint32_t before = 0;
    std::uint32_t count = 0;
    std::uint32_t first = 0; // position of the first
    std::uint32_t step = 1;  // to the next; it may wrap
};

Span spanWithin(const PictureSettings& settings, std::uint32_t width) {
    const std::uint32_t end = std::min(width, settings.sensorWidth); // positions below exist
    const std::uint32_t length = settings.xLength;
    if (settings.xOffset >= settings.sensorWidth) return {.before = length};
    if (!settings.isMirroredX) {
        if (settings.xOffset >= end) return {.before = length};
        return {.count = std::min(length, end - settings.xOffset), .first = settings.xOffset};
    }
    const std::uint32_t first = settings.sensorWidth - 1 - settings.xOffset; // and from there backwards
    const std::uint32_t before = first < end ? 0 : first - end + 1;
    if (before >= length || end == 0) return {.before = length};
    const std::uint32_t start = first - before;
    return {.before = before, .count = std::min(length - before, start + 1), .first = start, .step = ~0U};
}

} // namespace

std::uint32_t patternValue(const Pattern& pattern, std::uint32_t x, std::uint32_t y, std::uint32_t frame) {
    const std::uint32_t start = y % pattern.yDivisor + frame % pattern.frameDivisor + pattern.offset;
    return ((pattern.isXEnabled ? x : 0) + start) & 0xff;
}

void Renderer::prepare(const Record& record) {
    const bool isSame = m_settings != nullptr && m_lookup == record.tables &&
                        (m_settings == record.settings || m_settings->colours == record.settings->colours);
    if (!isSame) m_components = std::make_unique<Components>(record.settings->colours, record.tables.get());
    m_settings = record.settings;
    m_lookup = record.tables;
}

/** Draws a line from a function that returns a component on the link at a position; 0 beyond `width`. */
template <typename ComponentAt>
void Renderer::drawPixels(std::uint32_t width, ComponentAt componentAt, std::uint8_t* out) const {
    const ColourSettings& colours = m_settings->colours;
    std::array<const std::uint16_t*, 3> tables{};
    std::array<std::uint32_t, 3> source{};
    std::array<std::uint32_t, 3> mask{}; // 0: a colour that no component of the link has
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t colour = memoryOrder[i];
        tables[i] = m_components->tableOf(colour);
        if (colours.source[colour] == ColourSettings::nothing) continue;
        source[i] = colours.source[colour];
        mask[i] = m_components->mask();
    }
    const Span inside = spanWithin(*m_settings, width);
    const std::uint32_t length = m_settings->xLength;
    packInto(out, colours.outBits, [=](auto packed) {
        // The bytes written may alias anything for the compiler, but not these.
        const std::uint16_t* const blue = tables[0];
        const std::uint16_t* const green = tables[1];
        const std::uint16_t* const red = tables[2];
        const std::uint32_t blueSource = source[0], greenSource = source[1], redSource = source[2];
        const std::uint32_t blueMask = mask[0], greenMask = mask[1], redMask = mask[2];
        const auto putNothing = [&](std::uint32_t pixels) {
            for (std::uint32_t i = 0; i < pixels; ++i) {
                packed.put(blue[0]);
                packed.put(green[0]);
                packed.put(red[0]);
            }
        };
        putNothing(inside.before);
        auto row = packed; // stays in registers, as its address is not taken
        std::uint32_t position = inside.first;
        for (std::uint32_t i = 0; i < inside.count; ++i, position += inside.step) {
            row.put(blue[componentAt(position, blueSource) & blueMask]);
            row.put(green[componentAt(position, greenSource) & greenMask]);
            row.put(red[componentAt(position, redSource) & redMask]);
        }
        packed = row;
        putNothing(length - inside.before - inside.count);
        packed.finish();
    });
}

void Renderer::drawLine(const SourceLine& line, std::uint8_t* out) const {
    const std::uint32_t start = patternValue(m_settings->pattern, 0, line.y, line.frame);
    const std::uint32_t factor = m_settings->pattern.isXEnabled ? 1 : 0;
    const auto width = static_cast<std::uint32_t>(
        std::min(std::uint64_t{line.cycles} * 32, std::uint64_t{ImageSize::widest}));
    drawPixels(
        width, [start, factor](std::uint32_t x, std::uint32_t) { return (start + x * factor) & 0xff; }, out);
}

/** Draws components of a line on the link, with 16 bits each. */
void Renderer::drawLink(std::uint32_t width, const std::uint16_t* components, std::uint8_t* out) const {
    const std::uint32_t shift = 16 - m_settings->colours.linkBits;
    drawPixels(
        width,
        [components, shift](std::uint32_t x, std::uint32_t component) {
            return std::uint32_t{components[std::size_t{3} * x + component]} >> shift;
        },
        out);
}

void Renderer::drawRaster(const Raster& raster, std::uint32_t y, std::uint8_t* out) const {
    const ColourSettings& colours = m_settings->colours;
    const std::uint16_t* row = raster.components.data() + std::size_t{3} * raster.width * y;
    if (raster.point == Raster::Point::camera) {
        drawLink(raster.width, row, out);
        return;
    }
    packInto(out, colours.outBits, [&](auto packed) {
        for (std::uint32_t x = 0; x < m_settings->xLength; ++x) {
            for (const std::size_t colour : memoryOrder) {
                std::uint16_t value = x < raster.width ? row[std::size_t{3} * x + colour] : std::uint16_t{0};
                if (raster.point == Raster::Point::buffer) {
                    std::span<const std::uint16_t> table;
                    if (m_lookup != nullptr) table = m_lookup->entries[colour];
                    value = balanced(value, colours.gain[colour], colours.isTableEnabled, table);
                }
                packed.put(shifted(value, colours.shift, colours.outBits));
            }
        }
        packed.finish();
    });
}

bool Renderer::render(const Record& record, std::span<std::uint8_t> out) {
    if (record.settings == nullptr || out.size() < record.bytes()) return false;
    if (!record.exposures.empty() && record.view == nullptr) return false;
    if (record.layout.bytesPerLine <
        packedSize(std::uint64_t{3} * record.settings->xLength, record.settings->colours.outBits))
        return false;
    prepare(record);
    const std::uint64_t stride = record.layout.bytesPerLine;
    const auto rowAt = [&](std::uint32_t number) {
        return out.data() + stride * (m_settings->isMirroredY ? record.lines - 1 - number : number);
    };
    std::uint32_t number = 0;
    for (const LineRun& run : record.runs) {
        for (std::uint32_t i = 0; i < run.count; ++i, ++number) {
            const SourceLine line = run.line(i);
            if (line.isOfCamera) {
                const Exposure& exposure = record.exposures[line.y];
                drawExposure(*record.view, exposure, m_link);
                drawLink(exposure.width, m_link.data(), rowAt(number));
            } else if (record.raster == nullptr)
                drawLine(line, rowAt(number));
            else // an image inserted after the buffer is not turned over
                drawRaster(*record.raster, line.y,
                           record.raster->point == Raster::Point::camera ? rowAt(number)
                                                                         : out.data() + stride * number);
        }
    }
    return true;
}

std::uint32_t lastPixelOf(const Record& record) {
    if (record.runs.empty() || record.settings == nullptr || record.settings->xLength == 0) return 0;
    const bool isInserted = record.raster != nullptr && record.raster->point != Raster::Point::camera;
    Record line;
    line.layout = record.layout;
    line.settings = record.settings;
    line.tables = record.tables;
    line.raster = record.raster;
    line.view = record.view;
    const bool isTurned = record.settings->isMirroredY && !isInserted;
    const LineRun& run = isTurned ? record.runs.front() : record.runs.back();
    const SourceLine last = run.line(isTurned ? 0 : run.count - 1);
    if (last.isOfCamera)
        line.add(last, record.exposures[last.y]);
    else
        line.add(last);
    std::vector<std::uint8_t> bytes(line.bytes() + sizeof(std::uint64_t)); // a pixel may begin within a byte
    if (!Renderer().render(line, bytes)) return 0;
    const std::uint32_t bits = record.settings->colours.outBits;
    const std::uint64_t first = std::uint64_t{3} * bits * (record.settings->xLength - 1);
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < sizeof word; ++i)
        word |= std::uint64_t{bytes[first / 8 + i]} << (8 * i);
    word >>= first % 8;
    return static_cast<std::uint32_t>(3 * bits < 32 ? word & ((std::uint64_t{1} << 3 * bits) - 1) : word);
}

} // namespace station
