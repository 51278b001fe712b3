#include "station/scene/Scene.h"

#include "station/scene/Chart.h"

#include <algorithm>

namespace station {
namespace {

constexpr std::uint16_t beltGrey = 16 * 257; // between the objects

std::int64_t roundedDown(std::int64_t number, std::int64_t divisor) {
    return number / divisor - (number % divisor < 0 ? 1 : 0);
}

/** A pseudorandom function of the number (SplitMix64). */
std::uint64_t scattered(std::uint64_t number) {
    number += 0x9e37'79b9'7f4a'7c15;
    number = (number ^ (number >> 30)) * 0xbf58'476d'1ce4'e5b9;
    number = (number ^ (number >> 27)) * 0x94d0'49bb'1331'11eb;
    return number ^ (number >> 31);
}

/** Converts a position of the belt to one in the image or chart, from its beginning. False between the objects. */
bool findPosition(const Scene& scene, std::int64_t& position) {
    if (scene.objects.empty()) return true;
    const auto next = std::ranges::upper_bound(scene.objects, position, {}, &BeltObject::position);
    if (next == scene.objects.begin()) return false;
    position -= (next - 1)->position;
    return position < (next - 1)->length;
}

/** Scales components by exposure time / full exposure, rounded down. A division for each would take most of the time of a
 *  picture, so the quotient is estimated with the reciprocal; the estimate is at most one too low. */
class Exposing {
public:
    Exposing(std::uint32_t ticks, std::uint32_t full)
        : m_full(full)
        , m_ticks(std::min(std::uint64_t{ticks}, std::uint64_t{full} * brightest))
        , m_ratio((m_ticks << 32) / full) {}

    /** Not limited to 16 bits. */
    std::uint64_t level(std::uint16_t component) const {
        const std::uint64_t estimate = component * m_ratio >> 32;
        const std::uint64_t rest = component * m_ticks - estimate * m_full;
        return estimate + (rest >= m_full ? 1 : 0);
    }

private:
    static constexpr std::uint64_t brightest = 0xffff; // a longer exposure makes no component brighter

    std::uint64_t m_full, m_ticks, m_ratio;
};

void drawImageLine(const SceneImage& image, std::int64_t y, std::vector<std::uint16_t>& components) {
    const auto height = static_cast<std::int64_t>(image.height);
    const auto row = static_cast<std::size_t>((y % height + height) % height);
    const std::size_t length = std::size_t{3} * image.width;
    const std::uint16_t* const pixels = image.components.data() + length * row;
    for (std::size_t i = 0; i < components.size(); i += length)
        std::copy_n(pixels, std::min(length, components.size() - i), components.data() + i);
}

} // namespace

void drawExposure(const View& view, const Exposure& line, std::vector<std::uint16_t>& components) {
    const Scene& scene = view.scene;
    components.assign(std::size_t{3} * line.width, beltGrey);
    std::int64_t position = line.position;
    if (findPosition(scene, position)) {
        const std::int64_t y = roundedDown(position, scene.pixel);
        if (scene.image != nullptr)
            drawImageLine(*scene.image, y, components);
        else
            drawChartLine(y, components);
    }
    const Exposing exposing(line.ticks, view.fullExposure);
    const std::uint64_t noiseOfLine = scattered(scene.seed ^ scattered(line.number));
    for (std::size_t i = 0; i < components.size(); i += 3) {
        const std::array<std::uint16_t, 3> pixel{components[i], components[i + 1], components[i + 2]};
        for (std::size_t k = 0; k < 3; ++k) {
            std::uint64_t level = exposing.level(pixel[view.order[k]]);
            if (scene.noise > 0) {
                level += scattered(noiseOfLine + i + k) % (2 * std::uint64_t{scene.noise} + 1);
                level -= std::min(level, std::uint64_t{scene.noise});
            }
            components[i + k] = static_cast<std::uint16_t>(std::min<std::uint64_t>(level, 0xffff));
        }
    }
}

} // namespace station
