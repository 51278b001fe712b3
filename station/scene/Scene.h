/** The scene on the belt, and the pixels of a line that a camera takes of it. */
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

/** An image of red, green and blue, 16 bits each, of a sound size. It repeats in both directions. */
struct SceneImage {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint16_t> components{}; // 3 * width * height
};

struct Scene {
    std::uint32_t pixel = 100'000; // width and height of a pixel on the belt, in nanometres, above 0
    std::shared_ptr<const SceneImage> image{}; // null: the chart
    // Merged. Each shows the image, beginning at its front. Empty: the image covers the whole belt.
    std::vector<BeltObject> objects{};
    std::uint32_t noise = 0; // maximum deviation of a 16-bit component
    std::uint64_t seed = 0;  // of the noise
};

/** A scene as a camera sees it. */
struct View {
    Scene scene;
    std::array<std::uint8_t, 3> order{0, 1, 2}; // colours in the order of the link: 0 red, 1 green, 2 blue
    std::uint32_t fullExposure = 1;             // ticks of exposure for the full values of the scene, above 0
};

/** Renders a line as the camera sends it: three 16-bit components per pixel, in the order of the link. */
void drawExposure(const View& view, const Exposure& line, std::vector<std::uint16_t>& components);

} // namespace station

#endif
