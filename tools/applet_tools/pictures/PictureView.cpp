#include "applet_tools/pictures/PictureView.h"

namespace applet_tools {

std::uint16_t componentAt(const PictureView& picture, std::uint32_t line, std::size_t component) {
    const auto bytes = picture.bytes.subspan(std::size_t{line} * picture.bytesPerLine, picture.bytesPerLine);
    const std::size_t bit = component * picture.bits;
    std::uint32_t found = 0;
    for (std::size_t i = 0; i < 3 && bit / 8 + i < bytes.size(); ++i)
        found |= std::uint32_t{bytes[bit / 8 + i]} << (8 * i);
    return static_cast<std::uint16_t>(found >> bit % 8 & ((1U << picture.bits) - 1));
}

Pixel pixelAt(const PictureView& picture, std::uint32_t x, std::uint32_t y) {
    const std::size_t first = std::size_t{3} * x;
    return {componentAt(picture, y, first + 2), componentAt(picture, y, first + 1),
            componentAt(picture, y, first)};
}

namespace {

/** The lines of 8 bits, by far the most frequent ones: a byte is a component. */
void unpackBytes(const PictureView& picture, std::uint32_t line, std::vector<std::uint16_t>& components) {
    const std::uint8_t* const bytes =
        picture.bytes.subspan(std::size_t{line} * picture.bytesPerLine, components.size()).data();
    std::uint16_t* const out = components.data();
    for (std::size_t i = 0; i < components.size(); i += 3) {
        out[i] = bytes[i + 2];
        out[i + 1] = bytes[i + 1];
        out[i + 2] = bytes[i];
    }
}

/** The lines of packed components, from their lowest bit on. */
void unpackBits(const PictureView& picture, std::uint32_t line, std::vector<std::uint16_t>& components) {
    auto byte = picture.bytes.subspan(std::size_t{line} * picture.bytesPerLine, picture.bytesPerLine).begin();
    const std::uint32_t mask = (1U << picture.bits) - 1;
    std::uint32_t held = 0, count = 0; // bits that were read and not used
    for (std::size_t pixel = 0; pixel < components.size(); pixel += 3)
        for (std::size_t colour = 3; colour-- > 0;) { // blue comes first
            for (; count < picture.bits; count += 8)
                held |= std::uint32_t{*byte++} << count;
            components[pixel + colour] = static_cast<std::uint16_t>(held & mask);
            held >>= picture.bits;
            count -= picture.bits;
        }
}

} // namespace

void unpackLine(const PictureView& picture, std::uint32_t line, std::vector<std::uint16_t>& components) {
    components.resize(std::size_t{3} * picture.width);
    if (picture.bits == 8)
        unpackBytes(picture, line, components);
    else
        unpackBits(picture, line, components);
}

} // namespace applet_tools
