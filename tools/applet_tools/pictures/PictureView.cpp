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
    std::uint16_t* const place = components.data();
    for (std::size_t i = 0; i < components.size(); i += 3) {
        place[i] = bytes[i + 2];
        place[i + 1] = bytes[i + 1];
        place[i + 2] = bytes[i];
    }
}

} // namespace

void unpackLine(const PictureView& picture, std::uint32_t line, std::vector<std::uint16_t>& components) {
    components.resize(std::size_t{3} * picture.width);
    if (picture.bits == 8) {
        unpackBytes(picture, line, components);
        return;
    }
    for (std::uint32_t x = 0; x < picture.width; ++x) {
        const Pixel pixel = pixelAt(picture, x, line);
        std::uint16_t* const place = components.data() + std::size_t{3} * x;
        place[0] = pixel.red;
        place[1] = pixel.green;
        place[2] = pixel.blue;
    }
}

} // namespace applet_tools
