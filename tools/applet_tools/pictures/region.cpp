#include "applet_tools/pictures/region.h"

#include <algorithm>
#include <utility>

namespace applet_tools {
namespace {

/** Calls use(line, components) for each line of the region; components are red, green, blue of its pixels. */
template <typename Use> void forLines(const PictureView& picture, const PictureRegion& region, Use use) {
    std::vector<std::uint16_t> line;
    for (std::uint32_t y = 0; y < region.lines; ++y) {
        unpackLine(picture, region.y + y, line);
        use(y, std::span(line).subspan(std::size_t{3} * region.x, std::size_t{3} * region.width));
    }
}

/** The first position of a box: `index` of `count` boxes over `size` positions. */
std::uint32_t boxStart(std::uint32_t index, std::uint32_t count, std::uint32_t size) {
    return static_cast<std::uint32_t>(std::uint64_t{index} * size / count);
}

/** Sums of the boxes of one line of the result. */
class BoxLine {
public:
    BoxLine(std::uint32_t from, std::uint32_t to) : m_sums(std::size_t{3} * to) {
        for (std::uint32_t x = 0; x <= to; ++x)
            m_starts.push_back(boxStart(x, to, from));
    }

    void add(std::span<const std::uint16_t> components) {
        for (std::size_t box = 0; box + 1 < m_starts.size(); ++box) {
            std::uint32_t red = 0, green = 0, blue = 0; // 16384 values of 16 bits are less than 2^32
            for (std::size_t i = std::size_t{3} * m_starts[box]; i < std::size_t{3} * m_starts[box + 1];
                 i += 3) {
                red += components[i];
                green += components[i + 1];
                blue += components[i + 2];
            }
            m_sums[3 * box] += red;
            m_sums[3 * box + 1] += green;
            m_sums[3 * box + 2] += blue;
        }
        ++m_lines;
    }

    /** Appends the means, and begins the next line. */
    void take(std::uint32_t bits, std::vector<std::uint8_t>& bytes) {
        const std::size_t begin = bytes.size();
        bytes.resize(begin + m_sums.size() * (bits > 8 ? 2 : 1));
        std::uint8_t* out = bytes.data() + begin;
        for (std::size_t box = 0; box + 1 < m_starts.size(); ++box) {
            const std::uint64_t count = std::uint64_t{m_starts[box + 1] - m_starts[box]} * m_lines;
            for (std::size_t colour = 3; colour-- > 0;) { // blue comes first
                const std::uint64_t sum = std::exchange(m_sums[3 * box + colour], 0) + count / 2;
                // Both are below 2^53, and a division of doubles is faster.
                const auto mean =
                    static_cast<std::uint16_t>(static_cast<double>(sum) / static_cast<double>(count));
                const std::uint16_t value = bits > 8 ? widened(mean, bits) : mean;
                *out++ = static_cast<std::uint8_t>(value & 0xff);
                if (bits > 8) *out++ = static_cast<std::uint8_t>(value >> 8);
            }
        }
        m_lines = 0;
    }

private:
    std::vector<std::uint32_t> m_starts;
    std::vector<std::uint64_t> m_sums;
    std::uint64_t m_lines = 0;
};

} // namespace

PictureRegion wholeOf(const PictureView& picture) { return {0, 0, picture.width, picture.lines}; }

bool isWithin(const PictureRegion& region, const PictureView& picture) {
    return region.width > 0 && region.lines > 0 && region.x < picture.width && region.y < picture.lines &&
           region.width <= picture.width - region.x && region.lines <= picture.lines - region.y;
}

OwnedPicture scaledDown(const PictureView& picture, const PictureRegion& region, std::uint32_t width,
                        std::uint32_t lines) {
    OwnedPicture scaled{width, lines, picture.bits > 8 ? 16U : 8U};
    scaled.bytes.reserve(std::size_t{3} * width * lines * (scaled.bits / 8));
    BoxLine boxes(region.width, width);
    std::uint32_t next = 1;
    forLines(picture, region, [&](std::uint32_t y, std::span<const std::uint16_t> components) {
        boxes.add(components);
        if (y + 1 < boxStart(next, lines, region.lines)) return;
        boxes.take(picture.bits, scaled.bytes);
        ++next;
    });
    return scaled;
}

PictureHistogram histogramOf(const PictureView& picture, const PictureRegion& region) {
    const std::uint16_t largest = static_cast<std::uint16_t>((1U << picture.bits) - 1);
    const std::uint32_t shift = picture.bits - 8;
    PictureHistogram histogram;
    histogram.count = std::uint64_t{region.width} * region.lines;
    forLines(picture, region, [&](std::uint32_t, std::span<const std::uint16_t> components) {
        for (std::size_t i = 0; i < components.size(); i += 3)
            for (std::size_t colour = 0; colour < 3; ++colour) {
                const std::uint16_t value = components[i + colour];
                ++histogram.counts[colour][value >> shift];
                histogram.sum[colour] += value;
                if (value == 0) ++histogram.low[colour];
                if (value == largest) ++histogram.high[colour];
            }
    });
    return histogram;
}

PictureProfile columnMeans(const PictureView& picture, const PictureRegion& region) {
    PictureProfile profile;
    for (auto& colour : profile)
        colour.assign(region.width, 0);
    forLines(picture, region, [&](std::uint32_t, std::span<const std::uint16_t> components) {
        for (std::size_t i = 0; i < components.size(); ++i)
            profile[i % 3][i / 3] += components[i];
    });
    for (auto& colour : profile)
        for (double& sum : colour)
            sum /= region.lines;
    return profile;
}

PictureProfile lineMeans(const PictureView& picture, const PictureRegion& region) {
    PictureProfile profile;
    forLines(picture, region, [&](std::uint32_t, std::span<const std::uint16_t> components) {
        std::array<std::uint64_t, 3> sums{};
        for (std::size_t i = 0; i < components.size(); ++i)
            sums[i % 3] += components[i];
        for (std::size_t colour = 0; colour < 3; ++colour)
            profile[colour].push_back(static_cast<double>(sums[colour]) / region.width);
    });
    return profile;
}

} // namespace applet_tools
