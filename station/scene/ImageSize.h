/** Limits of the size of lines and images. */
#ifndef STATION_SCENE_IMAGESIZE_H
#define STATION_SCENE_IMAGESIZE_H

#include <cstddef>
#include <cstdint>

namespace station {

struct ImageSize {
    static constexpr std::uint32_t widest = 16384; // pixels of a line
    static constexpr std::uint32_t highest = 65536;
    static constexpr std::size_t mostPixels = std::size_t{1} << 24;

    /** True for a size that an image can have. */
    static constexpr bool isSound(std::uint32_t width, std::uint32_t height) {
        return width > 0 && height > 0 && width <= widest && height <= highest &&
               std::size_t{width} * height <= mostPixels;
    }
};

} // namespace station

#endif
