/** Statistics of a picture's values, by colour. */
#ifndef APPLET_TOOLS_PICTURES_STATISTICS_H
#define APPLET_TOOLS_PICTURES_STATISTICS_H

#include "applet_tools/pictures/PictureView.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cstdint>

namespace applet_tools {

/** Statistics of the components of one colour, over one or several pictures. */
struct ColourStatistics {
    std::uint16_t minimum = 0xffff, maximum = 0;
    std::uint64_t count = 0, sum = 0;
    std::uint64_t clipped = 0; /**< components with the maximum for their bits */

    void add(const ColourStatistics& other);
    double mean() const;
    /** Share of clipped components, from 0 to 1. */
    double clippedShare() const;
};

struct PictureStatistics {
    static constexpr std::array<const char*, 3> names = {"red", "green", "blue"};
    std::array<ColourStatistics, 3> colours{}; /**< in the order of the names */

    void add(const PictureStatistics& other);
};

PictureStatistics statisticsOf(const PictureView& picture);

/** {"red": {"minimum", "mean", "maximum", "clipped"}, "green": ..., "blue": ...}; null if there is no value. */
nlohmann::ordered_json asJson(const PictureStatistics& statistics);

} // namespace applet_tools

#endif
