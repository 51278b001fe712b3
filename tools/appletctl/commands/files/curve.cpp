#include "appletctl/commands/files/curve.h"

#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/layout.h"
#include "appletctl/draw/svg.h"
#include "appletctl/draw/xml.h"

#include <algorithm>
#include <cmath>

namespace appletctl {
namespace {

using svg::coordinate, svg::label, svg::line, xml::attribute;

/** The smallest and the largest entry of a part of the table, and which of them comes first. */
struct Part {
    std::uint32_t minimum, maximum;
    bool isRising;
};

/** Part `number` of `count` parts of the table; a shorter table repeats its entries. */
Part partOf(const Elements& entries, std::size_t number, std::size_t count) {
    const std::size_t first = number * entries.size() / count;
    const std::size_t end = std::max(first + 1, (number + 1) * entries.size() / count);
    const auto begin = entries.begin() + static_cast<std::ptrdiff_t>(first);
    const auto [minimum, maximum] =
        std::minmax_element(begin, entries.begin() + static_cast<std::ptrdiff_t>(end));
    return {*minimum, *maximum, minimum <= maximum};
}

/** A grid of black and white dots, the first row on top. */
class Raster {
public:
    Raster(std::size_t width, std::size_t height) : m_width(width), m_dots(width * height) {}

    bool at(std::size_t x, std::size_t y) const { return m_dots[y * m_width + x]; }
    void set(std::size_t x, std::size_t y) { m_dots[y * m_width + x] = true; }

private:
    std::size_t m_width;
    std::vector<bool> m_dots;
};

Raster drawn(const Elements& entries, std::uint32_t largest, std::size_t width, std::size_t height) {
    Raster raster(width, height);
    const auto rowOf = [&](std::uint32_t entry) {
        const double share = std::min(1.0, static_cast<double>(entry) / largest);
        return height - 1 - static_cast<std::size_t>(std::lround(share * static_cast<double>(height - 1)));
    };
    for (std::size_t x = 0; x < width; ++x) {
        const Part part = partOf(entries, x, width);
        for (std::size_t y = rowOf(part.maximum); y <= rowOf(part.minimum); ++y)
            raster.set(x, y);
    }
    return raster;
}

/** Dots per character of the terminal. */
struct CellSize {
    std::size_t width, height;
};

/** Size of a curve in characters. */
struct CurveSize {
    std::size_t columns, rows;
};

CurveSize sizeWithin(std::size_t lineWidth, std::size_t markWidth) {
    constexpr std::size_t usualColumns = 64, fewestColumns = 16, mostColumns = 128;
    constexpr std::size_t fewestRows = 6, mostRows = 24;
    const std::size_t taken = markWidth + 4; // indentation, axis labels and the axis
    const std::size_t columns =
        lineWidth == unlimitedWidth
            ? usualColumns
            : std::clamp(lineWidth - std::min(lineWidth, taken), fewestColumns, mostColumns);
    return {columns, std::clamp(columns / 4, fewestRows, mostRows)};
}

constexpr CellSize brailleCell = {2, 4};
constexpr CellSize asciiCell = {1, 1};

/** The character for two by four dots: U+2800 plus one bit for each dot; the bits go down the columns of
 *  three dots, then along the fourth row. */
std::string brailleCharacter(const Raster& raster, std::size_t column, std::size_t row) {
    constexpr unsigned bits[4][2] = {{0x01, 0x08}, {0x02, 0x10}, {0x04, 0x20}, {0x40, 0x80}};
    unsigned pattern = 0;
    for (std::size_t y = 0; y < brailleCell.height; ++y)
        for (std::size_t x = 0; x < brailleCell.width; ++x)
            if (raster.at(column * brailleCell.width + x, row * brailleCell.height + y))
                pattern |= bits[y][x];
    if (pattern == 0) return " ";
    return {'\xE2', static_cast<char>(0xA0 | (pattern >> 6)), static_cast<char>(0x80 | (pattern & 0x3F))};
}

std::string padded(const std::string& text, std::size_t width) {
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

constexpr double plotLeft = 80, plotTop = 70, plotWidth = 640, plotHeight = 360;
constexpr std::size_t ticks = 4; // parts of an axis
constexpr std::size_t curveParts = 640;

/** Decreasing widths, so that overlapping curves all remain visible. */
struct Stroke {
    const char* colour;
    double width;
};
constexpr Stroke strokes[] = {{"#d62728", 5}, {"#2ca02c", 3}, {"#1f77b4", 1.2}};

/** Grid lines, numbers and titles of both axes. */
std::string axes(std::size_t lastEntry, std::uint32_t largest) {
    constexpr const char* gridColour = "#dddddd";
    const double bottom = plotTop + plotHeight;
    std::string drawn;
    for (std::size_t tick = 0; tick <= ticks; ++tick) {
        const double share = static_cast<double>(tick) / ticks;
        const auto numberAt = [&](double end) { return numberText(std::lround(share * end)); };
        const double x = plotLeft + share * plotWidth;
        const double y = bottom - share * plotHeight;
        drawn += line(x, plotTop, x, bottom, gridColour, 1) +
                 line(plotLeft, y, plotLeft + plotWidth, y, gridColour, 1) +
                 label(x, bottom + 20, "middle", numberAt(static_cast<double>(lastEntry))) +
                 label(plotLeft - 8, y + 4, "end", numberAt(largest));
    }
    const std::string middle = coordinate(plotTop + plotHeight / 2);
    return drawn + line(plotLeft, bottom, plotLeft + plotWidth, bottom, "#333333", 1) +
           line(plotLeft, plotTop, plotLeft, bottom, "#333333", 1) +
           label(plotLeft + plotWidth / 2, bottom + 45, "middle", "entry (value of the input)") +
           label(20, plotTop + plotHeight / 2, "middle", "value of the output",
                 attribute("transform", "rotate(-90 20 " + middle + ")"));
}

std::string polyline(const LutTable& table, std::uint32_t largest, const Stroke& stroke) {
    std::string points;
    std::string last;
    for (std::size_t number = 0; number < curveParts; ++number) {
        const Part part = partOf(table.entries, number, curveParts);
        const double x = plotLeft + plotWidth * static_cast<double>(number) / (curveParts - 1);
        const auto [first, second] =
            part.isRising ? std::pair(part.minimum, part.maximum) : std::pair(part.maximum, part.minimum);
        for (const std::uint32_t entry : {first, second}) {
            const double share = std::min(1.0, static_cast<double>(entry) / largest);
            const std::string point = coordinate(x) + "," + coordinate(plotTop + plotHeight * (1 - share));
            if (point != last) points += (points.empty() ? "" : " ") + point;
            last = point;
        }
    }
    return "<polyline" + attribute("fill", "none") + attribute("stroke", stroke.colour) +
           attribute("stroke-width", coordinate(stroke.width)) + attribute("stroke-linejoin", "round") +
           attribute("points", points) + "><title>" + table.colour + "</title></polyline>\n";
}

std::string legendEntry(std::size_t number, const LutTable& table, const Stroke& stroke) {
    const double x = plotLeft + 15;
    const double y = plotTop + 20 + 20 * static_cast<double>(number);
    return line(x, y, x + 30, y, stroke.colour, stroke.width) + label(x + 38, y + 4, "start", table.colour);
}

} // namespace

std::string curveText(const Elements& entries, std::uint32_t largest, bool braille, std::size_t lineWidth) {
    const CellSize cell = braille ? brailleCell : asciiCell;
    const std::string top = numberText(largest);
    const auto [columns, rows] = sizeWithin(lineWidth, top.size());
    const Raster raster = drawn(entries, largest, columns * cell.width, rows * cell.height);
    const std::string lastEntry = numberText(entries.size() - 1);
    std::string text;
    for (std::size_t row = 0; row < rows; ++row) {
        const std::string mark = row == 0 ? top : row + 1 == rows ? "0" : "";
        std::string shown;
        for (std::size_t column = 0; column < columns; ++column)
            shown += braille ? brailleCharacter(raster, column, row) : raster.at(column, row) ? "*" : " ";
        shown.erase(shown.find_last_not_of(' ') + 1);
        text += "  " + padded(mark, top.size()) + (braille ? " │" : " |") + shown + '\n';
    }
    const std::string indent(top.size() + 3, ' ');
    std::string axis;
    for (std::size_t column = 0; column < columns; ++column)
        axis += braille ? "─" : "-";
    return text + indent + (braille ? "└" : "+") + axis + '\n' + indent + " 0" +
           padded(lastEntry, columns - 1) + '\n';
}

/** A bar along the clipped entries, at the value that they are clipped to. */
std::string clippedBar(const LutTable& table, std::uint32_t largest, const std::optional<ElementRange>& part,
                       std::size_t number) {
    if (!part) return "";
    const auto xOf = [&](std::uint32_t entry) {
        return plotLeft + plotWidth * static_cast<double>(entry) /
                              static_cast<double>(std::max<std::size_t>(table.entries.size() - 1, 1));
    };
    const bool isAtTop = table.entries[part->first] >= largest;
    constexpr double barHeight = 4;
    // The bars of the colours are outside the plot, next to each other.
    const double distance = barHeight * (static_cast<double>(number) + 0.5);
    const double y = isAtTop ? plotTop - distance - 1 : plotTop + plotHeight + distance + 1;
    return line(xOf(part->first), y, xOf(part->last), y, strokes[number].colour, barHeight);
}

/** The bars of all colours, with a legend below the picture. */
std::string clippedBars(const LutTables& tables) {
    std::string bars;
    std::vector<std::string> counts;
    for (std::size_t i = 0; i < tables.colours.size(); ++i) {
        const LutTable& table = tables.colours[i];
        const LutStatistics statistics = statisticsOf(table.entries, tables.largest);
        std::size_t count = 0;
        for (const auto& part : {statistics.atStart, statistics.atEnd}) {
            bars += clippedBar(table, tables.largest, part, i);
            if (part) count += part->count();
        }
        if (count > 0) counts.push_back(numberText(count) + " entries of " + table.colour);
    }
    if (bars.empty()) return "";
    return bars + label(plotLeft + plotWidth / 2, plotTop + plotHeight + 64, "middle",
                        "bars: clipped, " + join(counts, ", "));
}

std::string curvesAsSvg(const LutTables& tables, const std::string& subtitle) {
    std::string content = axes(tables.colours.front().entries.size() - 1, tables.largest);
    for (std::size_t i = 0; i < tables.colours.size(); ++i)
        content += polyline(tables.colours[i], tables.largest, strokes[i]);
    for (std::size_t i = 0; i < tables.colours.size(); ++i)
        content += legendEntry(i, tables.colours[i], strokes[i]);
    content += clippedBars(tables);
    return svg::document(plotLeft + plotWidth + 40, plotTop + plotHeight + 80, plotLeft, "Lookup table",
                         subtitle, content);
}

} // namespace appletctl
