/** What lies on the belt, and the pixels that a camera makes of a line of it. */
#ifndef STATION_SCENE_SCENE_H
#define STATION_SCENE_SCENE_H

#include "station/scene/Belt.h"
#include "station/scene/Exposure.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace station {

/** Pixels of red, green and blue in 16 bits each. It repeats in both directions. */
struct SceneImage {
    static constexpr std::uint32_t widest = 16384;
    static constexpr std::uint32_t highest = 65536;
    static constexpr std::size_t mostPixels = std::size_t{1} << 24;

    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint16_t> components{}; // 3 * width * height

    static bool isSoundSize(std::uint32_t width, std::uint32_t height) {
        return width > 0 && height > 0 && width <= widest && height <= highest &&
               std::size_t{width} * height <= mostPixels;
    }
};

struct Scene {
    std::uint32_t pixel = 100'000; // width and height of a pixel on the belt, in nanometres, above 0
    std::shared_ptr<const SceneImage> image{}; // null: the chart
    std::vector<BeltObject>
        objects{};           // merged; each shows the image from its front on. None: it is all over the belt
    std::uint32_t noise = 0; // largest deviation of a component of 16 bits
    std::uint64_t seed = 0;  // of the noise
};

/** A scene as a camera sees it. */
struct View {
    Scene scene;
    std::array<std::uint8_t, 3> order{0, 1,
                                      2}; // the colours of the components on the link: 0 red, 1 green, 2 blue
    std::uint32_t fullExposure = 1;       // ticks after which a component has the value of the scene, above 0
};

/** The components of a line on the link, with 16 bits each: three for each of its pixels. */
void drawExposure(const View& view, const Exposure& line, std::vector<std::uint16_t>& components);

} // namespace station

#endif
