/** The settings that a picture is rendered with: parameters and tables as they were at its first line. */
#ifndef STATION_PICTURE_PICTURE_SETTINGS_H
#define STATION_PICTURE_PICTURE_SETTINGS_H

#include "station/scene/ImageSize.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace station {

/** The picture of the simulator: value = (x, if enabled, + y mod yDivisor + frame mod frameDivisor + offset) mod 256. */
struct Pattern {
    bool isXEnabled = true;
    std::uint32_t yDivisor = 1; // above 0
    std::uint32_t frameDivisor = 1;
    std::uint32_t offset = 0;
    bool operator==(const Pattern&) const = default;
};

/** Processing of the components, in the order red, green, blue. */
struct ColourSettings {
    static constexpr std::uint8_t nothing = 3;
    std::array<std::uint8_t, 3> source{0, 1, 2}; // component of the link; none: a colour that is always 0
    std::uint32_t linkBits = 8;                  // 8 to 16
    std::array<std::uint32_t, 3> gain{1024, 1024, 1024}; // in 1/1024, up to 4095
    bool isTableEnabled = false;
    std::uint32_t shift = 0;   // to the right, of the 16 bits inside
    std::uint32_t outBits = 8; // 8, 10, 12, 14 or 16
    bool operator==(const ColourSettings&) const = default;
};

struct PictureSettings {
    std::uint32_t sensorWidth = 0; // stored pixels of a line, at most ImageSize::widest
    std::uint32_t xOffset = 0;     // from the corner given by the vantage point
    std::uint32_t xLength = 0;     // at most ImageSize::widest
    bool isMirroredX = false;
    bool isMirroredY = false;
    Pattern pattern;
    ColourSettings colours;
    bool operator==(const PictureSettings&) const = default;
};

/** Maximum number of entries of a lookup table. */
inline constexpr std::size_t tableSize = 16384;

/** The low 16 bits of the entries of the lookup tables of red, green and blue. */
struct Tables {
    std::array<std::array<std::uint16_t, tableSize>, 3> entries{};
};

/** Pixels of three 16-bit components, from the top: red, green, blue, or at the camera in the link order. */
struct Raster {
    /** The point of the image path where it is inserted. */
    enum class Point : std::uint8_t { camera, buffer, output };
    Point point = Point::camera;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint16_t> components{}; // 3 * width * height

    bool isSound() const {
        return ImageSize::isSound(width, height) && components.size() == std::size_t{3} * width * height;
    }
};

} // namespace station

#endif
