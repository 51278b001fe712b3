/** The range of the values of a picture, by colour. */
#ifndef APPLET_TOOLS_PICTURES_STATISTICS_H
#define APPLET_TOOLS_PICTURES_STATISTICS_H

#include "applet_tools/pictures/PictureView.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cstdint>

namespace applet_tools {

/** Of the components of one colour, one picture or several. */
struct ColourStatistics {
    std::uint16_t minimum = 0xffff, maximum = 0;
    std::uint64_t count = 0, sum = 0;
    std::uint64_t clipped = 0; /**< components with the largest value that their bits allow */

    void add(const ColourStatistics& other);
    double mean() const;
    /** From 0 to 1. */
    double clippedShare() const;
};

struct PictureStatistics {
    static constexpr std::array<const char*, 3> names = {"red", "green", "blue"};
    std::array<ColourStatistics, 3> colours{}; /**< in the order of the names */

    void add(const PictureStatistics& other);
};

PictureStatistics statisticsOf(const PictureView& picture);

/** {"red": {"minimum", "mean", "maximum", "clipped"}, "green": ..., "blue": ...}; without a value null. */
nlohmann::ordered_json asJson(const PictureStatistics& statistics);

} // namespace applet_tools

#endif
