#include "appletctl/draw/preview.h"

#include "applet_tools/base/numbers.h"
#include "appletctl/base/layout.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace appletctl {
namespace {

using Rgb = std::array<std::uint32_t, 3>; // 0 to 255 each

/** Averages areas of a picture, one row of areas at a time. */
class Means {
public:
    Means(const PictureView& picture, std::uint32_t width, std::uint32_t height)
        : m_picture(picture)
        , m_width(width)
        , m_height(height) {}

    /** The row of areas that starts at this line; areas at the right and the lower edge may be smaller. */
    std::vector<Rgb> row(std::uint32_t first) {
        std::vector<std::array<std::uint64_t, 4>> sums((m_picture.width + m_width - 1) / m_width);
        const std::uint32_t end = first + std::min(m_height, m_picture.lines - first);
        for (std::uint32_t y = first; y < end; ++y) {
            unpackLine(m_picture, y, m_line);
            for (std::uint32_t x = 0; x < m_picture.width; ++x) {
                auto& sum = sums[x / m_width];
                for (std::size_t colour = 0; colour < 3; ++colour)
                    sum[colour] += m_line[std::size_t{3} * x + colour];
                ++sum[3];
            }
        }
        std::vector<Rgb> means;
        means.reserve(sums.size());
        for (const auto& [red, green, blue, count] : sums)
            means.push_back({shown(red / count), shown(green / count), shown(blue / count)});
        return means;
    }

private:
    std::uint32_t shown(std::uint64_t value) const {
        return static_cast<std::uint32_t>(value >> (m_picture.bits - 8));
    }

    const PictureView& m_picture;
    const std::uint32_t m_width, m_height; // of an area
    std::vector<std::uint16_t> m_line;
};

char rampOf(const Rgb& colour) {
    constexpr std::string_view ramp = " .:-=+*#%@";
    const std::uint32_t luma = (299 * colour[0] + 587 * colour[1] + 114 * colour[2]) / 1000;
    return ramp[luma * ramp.size() / 256];
}

/** The nearest of a terminal's 256 colours: a grey, or one of the cube of 6 x 6 x 6. */
std::uint32_t indexOf(const Rgb& colour) {
    const auto level = [](std::uint32_t value) {
        return value < 48 ? 0 : value < 115 ? 1 : (value - 35) / 40;
    };
    const std::uint32_t red = level(colour[0]), green = level(colour[1]), blue = level(colour[2]);
    const auto [darkest, brightest] = std::ranges::minmax(colour);
    constexpr std::uint32_t firstGrey = 232, greys = 24, nearlyGrey = 8;
    if (brightest - darkest < nearlyGrey && brightest >= 4 && darkest < 244)
        return firstGrey +
               std::min((brightest + darkest) / 2 < 8 ? 0 : ((brightest + darkest) / 2 - 3) / 10, greys - 1);
    return 16 + 36 * red + 6 * green + blue;
}

std::string codeOf(const char* ground, const Rgb& colour, ColourDepth colours) {
    const std::string start = std::string("\033[") + ground;
    if (colours == ColourDepth::of256) return start + ";5;" + numberText(indexOf(colour)) + "m";
    return start + ";2;" + numberText(colour[0]) + ";" + numberText(colour[1]) + ";" + numberText(colour[2]) +
           "m";
}

/** Upper half blocks: the upper area is the foreground colour, the lower one the background colour. */
std::string blocksOf(const std::vector<Rgb>& upper, const std::vector<Rgb>& lower, ColourDepth colours) {
    std::string line, before;
    for (std::size_t i = 0; i < upper.size(); ++i) {
        std::string code = codeOf("38", upper[i], colours);
        if (!lower.empty()) code += codeOf("48", lower[i], colours);
        if (code != before) line += code;
        before = code;
        line += "▀";
    }
    return line + "\033[0m\n";
}

} // namespace

std::string previewOf(const PictureView& picture, ColourDepth colours, std::size_t columns) {
    constexpr std::uint32_t mostLines = 60;
    const auto most = static_cast<std::uint32_t>(std::clamp<std::size_t>(columns, 1, 16384));
    const std::uint32_t scale = std::max(
        {1U, (picture.width + most - 1) / most, (picture.lines + 2 * mostLines - 1) / (2 * mostLines)});
    const bool isAscii = colours == ColourDepth::none;
    const std::uint32_t height = isAscii ? 2 * scale : scale;
    Means means(picture, scale, height);
    std::string text;
    for (std::uint32_t y = 0; y < picture.lines; y += 2 * scale) {
        const std::vector<Rgb> upper = means.row(y);
        if (isAscii) {
            std::ranges::transform(upper, std::back_inserter(text), rampOf);
            text += '\n';
        } else {
            text += blocksOf(upper, y + scale < picture.lines ? means.row(y + scale) : std::vector<Rgb>(),
                             colours);
        }
    }
    const std::string size = "(" + numberText(picture.width) + " x " + numberText(picture.lines) +
                             " pixels, each " + (isAscii ? "character" : "half of a character") +
                             " the mean of " + numberText(scale) + " x " + numberText(height) + ")\n";
    return text + wrapped(size, columns);
}

} // namespace appletctl
