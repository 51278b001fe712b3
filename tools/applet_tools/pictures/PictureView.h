/** A view of a picture in memory. */
#ifndef APPLET_TOOLS_PICTURES_PICTUREVIEW_H
#define APPLET_TOOLS_PICTURES_PICTUREVIEW_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace applet_tools {

/** Contiguous lines. A line has blue, green, red of each pixel from its lowest bit on, without padding. */
struct PictureView {
    std::span<const std::uint8_t> bytes;
    std::uint32_t width = 0, lines = 0;
    std::uint32_t bits = 8; /**< per component: 8 to 16 */
    std::uint32_t bytesPerLine = 0;

    std::string_view text() const { return {reinterpret_cast<const char*>(bytes.data()), bytes.size()}; }
};

struct Pixel {
    std::uint16_t red, green, blue;
};

/** A component of a line by its index: 0 is the first pixel's blue. */
std::uint16_t componentAt(const PictureView& picture, std::uint32_t line, std::size_t component);

/** `x` and `y` must be within the picture. */
Pixel pixelAt(const PictureView& picture, std::uint32_t x, std::uint32_t y);

/** Red, green, blue of each pixel of a line, one after the other. */
void unpackLine(const PictureView& picture, std::uint32_t line, std::vector<std::uint16_t>& components);

/** Scales a value of this many bits to 16 bits: 0 stays 0, and the maximum becomes the maximum. */
constexpr std::uint16_t widened(std::uint16_t value, std::uint32_t bits) {
    const std::uint32_t high = static_cast<std::uint32_t>(value) << (16 - bits);
    return static_cast<std::uint16_t>(high | high >> bits);
}

} // namespace applet_tools

#endif
