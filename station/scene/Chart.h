/** An endless colour chart: rulers, the number of each line as bars, and panels of test patterns. */
#ifndef STATION_SCENE_CHART_H
#define STATION_SCENE_CHART_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace station {

/** The bars at the left of each line: white, black, then the bits of the line number, highest first, white for 1. */
struct ChartBars {
    static constexpr std::uint32_t width = 8; // pixels of a bar
    static constexpr std::uint32_t first = 2; // the bar of the highest bit
    static constexpr std::uint32_t bits = 20;
};

/** Fills `components` with line y of the chart: red, green and blue of each pixel, 16 bits each. */
void drawChartLine(std::int64_t y, std::vector<std::uint16_t>& components);

} // namespace station

#endif
