#include "applet_tools/pictures/statistics.h"

#include <algorithm>

namespace applet_tools {

void ColourStatistics::add(const ColourStatistics& other) {
    minimum = std::min(minimum, other.minimum);
    maximum = std::max(maximum, other.maximum);
    count += other.count;
    sum += other.sum;
    clipped += other.clipped;
}

double ColourStatistics::mean() const {
    return count == 0 ? 0 : static_cast<double>(sum) / static_cast<double>(count);
}

double ColourStatistics::clippedShare() const {
    return count == 0 ? 0 : static_cast<double>(clipped) / static_cast<double>(count);
}

void PictureStatistics::add(const PictureStatistics& other) {
    for (std::size_t i = 0; i < colours.size(); ++i)
        colours[i].add(other.colours[i]);
}

PictureStatistics statisticsOf(const PictureView& picture) {
    const auto largest = static_cast<std::uint16_t>((1U << picture.bits) - 1);
    PictureStatistics statistics;
    std::vector<std::uint16_t> line;
    for (std::uint32_t y = 0; y < picture.lines; ++y) {
        unpackLine(picture, y, line);
        for (std::size_t i = 0; i < line.size(); ++i) {
            const std::uint16_t value = line[i];
            statistics.colours[i % 3].add({value, value, 1, value, value == largest ? 1U : 0U});
        }
    }
    return statistics;
}

nlohmann::ordered_json asJson(const PictureStatistics& statistics) {
    nlohmann::ordered_json object = nlohmann::ordered_json::object();
    for (std::size_t i = 0; i < statistics.colours.size(); ++i) {
        const ColourStatistics& colour = statistics.colours[i];
        auto& one = object[PictureStatistics::names[i]];
        if (colour.count == 0) continue;
        one = {{"minimum", colour.minimum},
               {"mean", colour.mean()},
               {"maximum", colour.maximum},
               {"clipped", colour.clippedShare()}};
    }
    return object;
}

} // namespace applet_tools
