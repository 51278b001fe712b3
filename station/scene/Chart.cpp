// The chart is computed with integers only, so it is the same on every machine. From left to right: the bars, the ruler
// in y, then the panels. The panels repeat every 512 lines, each time below a ruler in x; the line numbers continue.

#include "station/scene/Chart.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace station {
namespace {

struct Colour8 {
    std::uint8_t red, green, blue;
};

constexpr Colour8 grey(std::int64_t level) {
    const auto value = static_cast<std::uint8_t>(level);
    return {value, value, value};
}

constexpr Colour8 paper = grey(235), ink = grey(20), gutter = grey(48), white = grey(255), black = grey(0);

constexpr std::int64_t rulerLeft = 176, panelsLeft = 256; // pixels
constexpr std::int64_t period = 512, panelsTop = 40;      // lines
constexpr std::int64_t panelWidth = 256, margin = 8;
constexpr std::int64_t innerWidth = panelWidth - 2 * margin;          // 240
constexpr std::int64_t innerHeight = period - panelsTop - 2 * margin; // 456

// ---- Numbers. A digit has 5 x 7 dots of 2 x 2 pixels.

constexpr std::int64_t dot = 2, digitWidth = 6 * dot, digitHeight = 7 * dot;

constexpr std::uint8_t digits[10][7] = {
    {0x0e, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0e}, {0x04, 0x0c, 0x04, 0x04, 0x04, 0x04, 0x0e},
    {0x0e, 0x11, 0x01, 0x02, 0x04, 0x08, 0x1f}, {0x1f, 0x02, 0x04, 0x02, 0x01, 0x11, 0x0e},
    {0x02, 0x06, 0x0a, 0x12, 0x1f, 0x02, 0x02}, {0x1f, 0x10, 0x1e, 0x01, 0x01, 0x11, 0x0e},
    {0x06, 0x08, 0x10, 0x1e, 0x11, 0x11, 0x0e}, {0x1f, 0x01, 0x02, 0x04, 0x08, 0x08, 0x08},
    {0x0e, 0x11, 0x11, 0x0e, 0x11, 0x11, 0x0e}, {0x0e, 0x11, 0x11, 0x0f, 0x01, 0x02, 0x0c}};

/** Whether a pixel belongs to a number with its upper left corner at 0, 0. */
bool isInNumber(std::int64_t number, std::int64_t x, std::int64_t y) {
    if (x < 0 || y < 0 || y >= digitHeight) return false;
    std::int64_t count = 1;
    for (std::int64_t rest = number; rest >= 10; rest /= 10)
        ++count;
    const std::int64_t index = x / digitWidth;
    if (index >= count) return false;
    for (std::int64_t i = index + 1; i < count; ++i)
        number /= 10;
    const std::int64_t column = x % digitWidth / dot;
    return column < 5 && (digits[number % 10][y / dot] >> (4 - column) & 1) != 0;
}

// ---- Bars and rulers.

Colour8 barsAt(std::int64_t x, std::int64_t y) {
    const std::int64_t bar = x / ChartBars::width - ChartBars::first;
    if (bar < 0) return bar + ChartBars::first == 0 ? white : black;
    const bool isSet = (y >> (ChartBars::bits - 1 - bar) & 1) != 0;
    return isSet ? white : black;
}

/** Length of a ruler's mark at a position; 0: no mark. */
std::int64_t markAt(std::int64_t position) {
    return position % 100 == 0 ? 3 : position % 50 == 0 ? 2 : position % 10 == 0;
}

Colour8 rulerInY(std::int64_t x, std::int64_t y) {
    constexpr std::int64_t most = 10'000; // four digits
    const std::int64_t position = (y % most + most) % most;
    if (x < 8 * markAt(position)) return ink;
    return isInNumber(position - position % 100, x - 28, position % 100 - 4) ? ink : paper;
}

Colour8 rulerInX(std::int64_t x, std::int64_t row) {
    if (row >= panelsTop - 2) return gutter;
    if (row < 7 * markAt(x)) return ink;
    return isInNumber(x - x % 100, x % 100 - 4, row - 22) ? ink : paper;
}

// ---- Panels. Coordinates are relative to the panel, below its inner width and height.

/** Rings, a square, a cross and diagonals. Rings that are not round indicate a wrong line rate. */
Colour8 geometryAt(std::int64_t x, std::int64_t y) {
    constexpr std::int64_t centre = innerWidth / 2;
    const std::int64_t down = y % (innerHeight / 2); // two figures
    const std::int64_t across = 2 * (x - centre) + 1,
                       below = 2 * (down - innerHeight / 4) + 1; // in half pixels
    const std::int64_t square = across * across + below * below;
    for (const std::int64_t radius : {55, 110, 165, 220})
        if (square >= (radius - 3) * (radius - 3) && square <= (radius + 3) * (radius + 3)) return ink;
    if (std::abs(across) <= 2 || std::abs(below) <= 2) return {200, 30, 30};
    if (std::abs(across - below) <= 2 || std::abs(across + below) <= 2) return {40, 80, 190};
    const std::int64_t edge = std::max(std::abs(across), std::abs(below));
    return edge >= 220 && edge <= 224 ? ink : paper;
}

constexpr std::array<Colour8, 8> bars{white,          {230, 220, 30}, {30, 200, 220}, {40, 180, 50},
                                      {210, 40, 190}, {215, 35, 35},  {35, 60, 205},  black};

/** Colour bars, and below them ramps of red, green, blue and grey. */
Colour8 coloursAt(std::int64_t x, std::int64_t y) {
    constexpr std::int64_t rampTop = innerHeight / 2, rampHeight = innerHeight / 8;
    if (y < rampTop) return bars[static_cast<std::size_t>(x * 8 / innerWidth)];
    const auto level = static_cast<std::uint8_t>(x * 255 / (innerWidth - 1));
    switch ((y - rampTop) / rampHeight) {
    case 0:
        return {level, 0, 0};
    case 1:
        return {0, level, 0};
    case 2:
        return {0, 0, level};
    default:
        return grey(level);
    }
}

/** Lines 1, 2, 3, 4, 6 and 8 pixels wide: vertical in the upper half, horizontal in the lower one. */
Colour8 resolutionAt(std::int64_t x, std::int64_t y) {
    constexpr std::array<std::int64_t, 6> widths{1, 2, 3, 4, 6, 8};
    constexpr std::int64_t half = innerHeight / 2;
    const bool isUpright = y < half;
    const std::int64_t band = isUpright ? y * 6 / half : x * 6 / innerWidth;
    const std::int64_t coordinate = isUpright ? x : y - half;
    return coordinate / widths[static_cast<std::size_t>(band)] % 2 == 0 ? ink : paper;
}

/** A zone plate: rings that become narrower towards the outside, until they are no longer resolved. */
Colour8 zonesAt(std::int64_t x, std::int64_t y) {
    const std::int64_t down = y % (innerHeight / 2);
    const std::int64_t across = x - innerWidth / 2, below = down - innerHeight / 4;
    const std::int64_t phase = (across * across + below * below) * 255 / 300 % 510;
    const std::int64_t level = phase < 255 ? phase : 509 - phase;
    return grey(level / 32 * 36); // eight levels, for smaller files
}

/** Sixteen grey levels, rising in the upper half and falling in the lower one. */
Colour8 stepsAt(std::int64_t x, std::int64_t y) {
    const std::int64_t step = x * 16 / innerWidth;
    return grey(17 * (y < innerHeight / 2 ? step : 15 - step));
}

/** Squares of 4, 8, 16 and 30 pixels. */
Colour8 squaresAt(std::int64_t x, std::int64_t y) {
    constexpr std::array<std::int64_t, 4> sizes{30, 16, 8, 4};
    const std::int64_t size = sizes[static_cast<std::size_t>(y * 4 / innerHeight)];
    return (x / size + y % (innerHeight / 4) / size) % 2 == 0 ? paper : ink;
}

/** 24 colour patches: twelve hues, each light and dark. */
Colour8 patchesAt(std::int64_t x, std::int64_t y) {
    constexpr std::int64_t across = 4, down = 6, gap = 4;
    const std::int64_t width = innerWidth / across, height = innerHeight / down;
    if (x % width < gap || y % height < gap) return gutter;
    const std::int64_t patch = y / height * across + x / width;
    const std::int64_t hue = patch / 2 * 128; // of 6 * 256
    const bool isLight = patch % 2 == 0;
    const std::int64_t low = isLight ? 110 : 25, high = isLight ? 245 : 165;
    const std::int64_t rise = low + (high - low) * (hue % 256) / 256, fall = high + low - rise;
    const std::array<std::array<std::int64_t, 3>, 6> corners{{{high, rise, low},
                                                              {fall, high, low},
                                                              {low, high, rise},
                                                              {low, fall, high},
                                                              {rise, low, high},
                                                              {high, low, fall}}};
    const auto& corner = corners[static_cast<std::size_t>(hue / 256 % 6)];
    return {static_cast<std::uint8_t>(corner[0]), static_cast<std::uint8_t>(corner[1]),
            static_cast<std::uint8_t>(corner[2])};
}

using Panel = Colour8 (*)(std::int64_t x, std::int64_t y);
constexpr Panel panels[] = {geometryAt, coloursAt, resolutionAt, patchesAt, stepsAt, zonesAt, squaresAt};
constexpr std::int64_t panelsWidth = panelWidth * std::int64_t{std::size(panels)};

Colour8 panelAt(std::int64_t x, std::int64_t row) {
    const std::int64_t within = x % panelWidth - margin, down = row - panelsTop - margin;
    if (within < 0 || within >= innerWidth || down < 0 || down >= innerHeight) return gutter;
    return panels[static_cast<std::size_t>(x / panelWidth)](within, down);
}

/** The panels, line by line: most of the chart, and the same in each period. */
std::vector<Colour8> drawnPanels() {
    std::vector<Colour8> drawn;
    drawn.reserve(panelsWidth * (period - panelsTop));
    for (std::int64_t row = panelsTop; row < period; ++row)
        for (std::int64_t x = 0; x < panelsWidth; ++x)
            drawn.push_back(panelAt(x, row));
    return drawn;
}

void put(Colour8 colour, std::uint16_t* pixel) {
    constexpr std::uint16_t wide = 257; // 255 becomes 65535
    pixel[0] = static_cast<std::uint16_t>(colour.red * wide);
    pixel[1] = static_cast<std::uint16_t>(colour.green * wide);
    pixel[2] = static_cast<std::uint16_t>(colour.blue * wide);
}

} // namespace

void drawChartLine(std::int64_t y, std::vector<std::uint16_t>& components) {
    static const std::vector<Colour8> allPanels = drawnPanels();
    const auto width = static_cast<std::int64_t>(components.size() / 3);
    const std::int64_t row = (y % period + period) % period;
    std::uint16_t* pixel = components.data();
    std::int64_t x = 0;
    for (; x < std::min(width, rulerLeft); ++x, pixel += 3)
        put(barsAt(x, y), pixel);
    for (; x < std::min(width, panelsLeft); ++x, pixel += 3)
        put(rulerInY(x - rulerLeft, y), pixel);
    if (row < panelsTop) {
        for (; x < width; ++x, pixel += 3)
            put(rulerInX(x, row), pixel);
        return;
    }
    const Colour8* const line = allPanels.data() + panelsWidth * (row - panelsTop);
    while (x < width) {
        const std::int64_t count = std::min(width - x, panelsWidth);
        for (std::int64_t i = 0; i < count; ++i, pixel += 3)
            put(line[i], pixel);
        x += count;
    }
}

} // namespace station
