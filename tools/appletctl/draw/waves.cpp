#include "appletctl/draw/waves.h"

#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/layout.h"
#include "appletctl/draw/svg.h"
#include "appletctl/draw/xml.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>

namespace appletctl {
namespace {

constexpr std::size_t usualColumns = 60, fewestColumns = 12, mostColumns = 120;

/** Columns for this many periods next to names of this width; the same number for each period. */
std::size_t columnsFor(std::size_t nameWidth, std::size_t lineWidth, std::size_t periods) {
    if (lineWidth == unlimitedWidth) return usualColumns;
    constexpr std::size_t blanks = 4, lastNumber = 10; // which is written after the last column
    const std::size_t taken = nameWidth + blanks + lastNumber;
    const std::size_t columns =
        std::clamp(lineWidth - std::min(lineWidth, taken), fewestColumns, mostColumns);
    return periods > 0 && periods <= columns ? columns - columns % periods : columns;
}

std::size_t columnOf(double time, double end, std::size_t columns) {
    return static_cast<std::size_t>(std::lround(time / end * static_cast<double>(columns)));
}

/** Level of each column. Pulses of equal length have equally many columns, at least two, with at least one
 *  column between pulses. */
std::vector<bool> levelsOf(const Wave& wave, double end, std::size_t columns) {
    std::vector<bool> levels(columns, wave.isActiveLow);
    for (std::size_t i = 0; i < wave.active->size(); ++i) {
        const Pulse& pulse = (*wave.active)[i];
        const std::size_t first = std::min(columnOf(pulse.start, end, columns), columns - 1);
        const std::size_t next =
            i + 1 < wave.active->size() ? columnOf((*wave.active)[i + 1].start, end, columns) : columns + 1;
        const std::size_t length = std::max<std::size_t>(2, columnOf(pulse.end - pulse.start, end, columns));
        const std::size_t last = std::clamp(first + length, first + 1, std::max(first + 1, next - 1));
        for (std::size_t column = first; column < std::min(last, columns); ++column)
            levels[column] = !wave.isActiveLow;
    }
    return levels;
}

/** The drawing of the upper and the lower line of a wave. */
struct Strokes {
    const char *high[2], *low[2], *rise[2], *fall[2];
};

constexpr Strokes boxStrokes = {{"─", " "}, {" ", "─"}, {"┌", "┘"}, {"┐", "└"}};
constexpr Strokes asciiStrokes = {{"_", " "}, {" ", "_"}, {" ", "|"}, {" ", "|"}};

std::string strokesOf(const std::vector<bool>& levels, const Strokes& strokes, std::size_t line) {
    std::string text;
    for (std::size_t column = 0; column < levels.size(); ++column) {
        const bool level = levels[column];
        const bool isEdge = column > 0 && levels[column - 1] != level;
        text +=
            isEdge ? (level ? strokes.rise : strokes.fall)[line] : (level ? strokes.high : strokes.low)[line];
    }
    return text;
}

std::string indented(const std::string& text, std::size_t width) {
    return "  " + text + std::string(width - std::min(width, displayWidth(text)) + 2, ' ');
}

/** Number of periods that begin within the drawing, besides the first. */
int periodsIn(double end, double period) { return static_cast<int>(std::lround(end / period)); }

/** The start times of the periods, each below its column. */
std::string scaleText(double end, double period, std::size_t columns) {
    std::string scale;
    for (int number = 0; number <= periodsIn(end, period); ++number) {
        const double time = number * period;
        const std::size_t column = columnOf(time, end, columns);
        if (!scale.empty() && column <= scale.size()) continue; // no room for this one
        scale.resize(column, ' ');
        scale += numberText(std::round(time * 1000) / 1000);
    }
    return scale + " µs";
}

std::int64_t nanoseconds(double time) { return std::llround(time * 1000); }

} // namespace

std::vector<Pulse> merged(const std::vector<Pulse>& pulses, double end) {
    std::vector<Pulse> result;
    for (const Pulse& pulse : pulses) {
        const Pulse shown{std::max(0.0, pulse.start), std::min(end, pulse.end)};
        if (shown.start >= shown.end) continue;
        if (!result.empty() && shown.start <= result.back().end)
            result.back().end = std::max(result.back().end, shown.end);
        else
            result.push_back(shown);
    }
    return result;
}

std::string wavesText(const std::vector<Wave>& waves, double end, double period, bool unicode,
                      std::size_t lineWidth) {
    const Strokes& strokes = unicode ? boxStrokes : asciiStrokes;
    std::size_t width = 0;
    for (const Wave& wave : waves)
        width = std::max(width, displayWidth(wave.name));
    const std::size_t columns =
        columnsFor(width, lineWidth, static_cast<std::size_t>(std::lround(end / period)));
    std::string text;
    for (const Wave& wave : waves) {
        if (!wave.active) {
            text += "\n" + indented(wave.name, width) + "not known\n";
            continue;
        }
        const std::vector<bool> levels = levelsOf(wave, end, columns);
        for (const std::size_t line : {0u, 1u}) {
            std::string shown =
                indented(line == 0 ? "" : wave.name, width) + strokesOf(levels, strokes, line);
            shown.erase(shown.find_last_not_of(' ') + 1);
            text += shown + '\n';
        }
    }
    return text + '\n' + indented("", width) + scaleText(end, period, columns) + '\n';
}

std::string wavesAsSvg(const std::vector<Wave>& waves, double end, double period, const std::string& subtitle,
                       double origin) {
    constexpr double left = 230, top = 80, width = 640, rowHeight = 36, swing = 20;
    const double bottom = top + rowHeight * static_cast<double>(waves.size());
    const auto xOf = [&](double time) { return left + width * time / end; };
    std::string content;
    for (int number = 0; number <= periodsIn(end, period); ++number) {
        const double time = number * period;
        content += svg::line(xOf(time), top - 10, xOf(time), bottom, "#dddddd", 1);
        content += svg::label(xOf(time), bottom + 18, "middle",
                              numberText(std::round((origin + time) * 1000) / 1000) + " µs");
    }
    for (std::size_t row = 0; row < waves.size(); ++row) {
        const Wave& wave = waves[row];
        const double low = top + rowHeight * static_cast<double>(row) + swing;
        const auto yOf = [&](bool level) { return level ? low - swing : low; };
        content += svg::label(left - 12, low - swing / 2 + 4, "end", wave.name);
        if (!wave.active) {
            content += svg::label(left + 8, low, "start", "not known", xml::attribute("fill", "#999999"));
            continue;
        }
        std::string points;
        const auto add = [&](double time, bool level) {
            points +=
                (points.empty() ? "" : " ") + svg::coordinate(xOf(time)) + "," + svg::coordinate(yOf(level));
        };
        bool level = wave.isActiveLow;
        for (const Pulse& pulse : *wave.active) {
            const bool hasBegun = pulse.start <= 0 && origin > 0; // before the drawing begins
            if (points.empty() && !hasBegun) add(0, level);
            if (!hasBegun) add(pulse.start, level);
            level = !wave.isActiveLow;
            add(pulse.start, level);
            add(pulse.end, level);
            if (pulse.end >= end) break; // it stays active
            level = wave.isActiveLow;
            add(pulse.end, level);
        }
        if (points.empty()) add(0, level);
        add(end, level);
        content += "<polyline" + xml::attribute("fill", "none") + xml::attribute("stroke", "#1f77b4") +
                   xml::attribute("stroke-width", "1.5") + xml::attribute("points", points) + "/>\n";
    }
    return svg::document(left + width + 40, bottom + 40, 20, "Timing", subtitle, content);
}

std::string wavesAsVcd(const std::vector<Wave>& waves, double end, double origin) {
    std::string text =
        "$version " APPLETCTL_VERSION " $end\n$timescale 1 ns $end\n$scope module applet $end\n";
    std::map<std::int64_t, std::string> changes;
    constexpr char firstCode = '!';
    for (std::size_t i = 0; i < waves.size(); ++i) {
        const Wave& wave = waves[i];
        const std::string code(1, static_cast<char>(firstCode + static_cast<char>(i)));
        std::string name = wave.name;
        std::ranges::replace(name, ' ', '_');
        text += "$var wire 1 " + code + " " + name + " $end\n";
        const auto level = [&](bool isActive) {
            return (isActive != wave.isActiveLow ? "1" : "0") + code + "\n";
        };
        if (!wave.active) {
            changes[0] += "x" + code + "\n";
            continue;
        }
        const bool isActiveAtStart = !wave.active->empty() && nanoseconds(wave.active->front().start) == 0;
        changes[0] += level(isActiveAtStart);
        for (const Pulse& pulse : *wave.active) {
            if (nanoseconds(pulse.start) > 0) changes[nanoseconds(pulse.start)] += level(true);
            if (pulse.end < end) changes[nanoseconds(pulse.end)] += level(false);
        }
    }
    text += "$upscope $end\n$enddefinitions $end\n#" + numberText(nanoseconds(origin)) + "\n$dumpvars\n" +
            changes[0] + "$end\n";
    changes.erase(0);
    for (const auto& [time, lines] : changes)
        text += "#" + numberText(nanoseconds(origin) + time) + "\n" + lines;
    return text + "#" + numberText(nanoseconds(origin) + nanoseconds(end)) + "\n";
}

} // namespace appletctl
