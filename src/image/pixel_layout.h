/** Size of a pixel in memory, from its format code. */
#ifndef IMAGE_PIXEL_LAYOUT_H
#define IMAGE_PIXEL_LAYOUT_H

#include <cstdint>

struct PixelLayout {
    std::uint32_t bits = 0; // of one component
    std::uint32_t components = 1;

    constexpr std::uint32_t bitsPerPixel() const { return components * bits; }
};

/** The layout of a pixel format; no bits for an unknown code. */
constexpr PixelLayout pixelLayoutOf(std::uint32_t format) {
    constexpr PixelLayout pairs{8, 2};
    if (format == 1569) return pairs;
    // Every other code is in a run of five, from 8 to 16 bits.
    struct Run {
        std::uint32_t first;
        std::uint32_t components;
    };
    constexpr Run runs[] = {{257, 1}, {785, 3}, {801, 3}, {817, 3}, {833, 3}, {1025, 3}, {1281, 3}};
    for (const Run& run : runs)
        if (format >= run.first && format <= run.first + 4)
            return {8 + 2 * (format - run.first), run.components};
    return {};
}

#endif
