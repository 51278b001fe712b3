#include "appletctl/commands/signals/measured_timing.h"

#include "applet_tools/answers/measured_timing.h"
#include "applet_tools/base/Interruption.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/report_text.h"
#include "appletctl/base/terminal.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>

namespace appletctl {
namespace {

std::string shown(std::optional<double> value, const std::string& unit) {
    return value ? numberText(*value) + " " + unit : "-";
}

/** The difference, or 0 if it is beyond the last displayed digit of the two. */
std::optional<double> differenceOf(const MeasuredRow& row) {
    if (!row.computed || !row.measured) return std::nullopt;
    constexpr int shownDigits = 12;
    const double largest = std::max(std::fabs(*row.computed), std::fabs(*row.measured));
    if (largest == 0) return 0;
    const double last = std::pow(10, std::floor(std::log10(largest)) - (shownDigits - 1));
    return std::round((*row.measured - *row.computed) / last) * last + 0.0; // + 0.0 avoids -0
}

std::string tableOf(const MeasuredTiming& timing) {
    Table table;
    table.setTitles({"ON THE STATION", "COMPUTED", "MEASURED", "DIFFERENCE"});
    for (const MeasuredRow& row : timing.rows) {
        std::string measured = shown(row.measured, row.unit);
        if (row.smallest)
            measured += " (" + numberText(*row.smallest) + " to " + numberText(*row.largest) + ")";
        table.addRow({row.name, shown(row.computed, row.unit), measured, shown(differenceOf(row), row.unit)});
    }
    return table.render(Style::forStream(STDOUT_FILENO));
}

nlohmann::ordered_json asJson(const MeasuredTiming& timing) {
    nlohmann::ordered_json object = {{"seconds", microseconds(timing.to - timing.from) / 1e6},
                                     {"lines", timing.lines},
                                     {"pictures", timing.pictures},
                                     {"remarks", timing.remarks}};
    auto& rows = object["rows"] = nlohmann::ordered_json::array();
    const auto orNull = [](std::optional<double> value) {
        return value ? nlohmann::ordered_json(*value) : nlohmann::ordered_json(nullptr);
    };
    for (const MeasuredRow& row : timing.rows) {
        auto& one = rows.emplace_back(nlohmann::ordered_json{{"name", row.name},
                                                             {"unit", row.unit},
                                                             {"computed", orNull(row.computed)},
                                                             {"measured", orNull(row.measured)},
                                                             {"difference", orNull(differenceOf(row))}});
        if (!row.smallest) continue;
        one["smallest"] = *row.smallest;
        one["largest"] = *row.largest;
    }
    return object;
}

Wave waveOf(const MeasuredSignal& signal, Ticks from, double end) {
    std::vector<Pulse> pulses;
    const bool startsActive = signal.waveform.startsHigh != signal.isActiveLow;
    std::optional<double> start = startsActive ? std::optional(0.0) : std::nullopt;
    for (const vboard_edge& edge : signal.waveform.edges) {
        const double time = microseconds(edge.tick) - microseconds(from);
        if (edge.level != signal.isActiveLow) {
            start = time;
        } else if (start) {
            pulses.push_back({*start, time});
            start.reset();
        }
    }
    if (start) pulses.push_back({*start, end});
    std::erase_if(pulses, [&](const Pulse& pulse) { return pulse.end <= 0 || pulse.start >= end; });
    return {signal.name, merged(pulses, end), signal.isActiveLow};
}

/** The most frequent period of ExSync; or of lines, if there is no ExSync. */
Ticks shownPeriod(const MeasuredTiming& timing) {
    for (const char* name : {"ExSync", "LVAL"}) {
        const auto found = std::ranges::find(timing.signals, name, &MeasuredSignal::name);
        std::vector<Ticks> periods = found->waveform.periods();
        if (periods.empty()) continue;
        std::ranges::nth_element(periods, periods.begin() + static_cast<std::ptrdiff_t>(periods.size() / 2));
        return periods[periods.size() / 2];
    }
    return ticksPerSecond / 1000;
}

/** The time step: 1, 2 or 5 times a power of ten, with 5 to 12 steps in the time. */
double roundPart(double time) {
    constexpr double most = 12;
    const double small = std::pow(10, std::floor(std::log10(time)) - 1);
    for (const double factor : {1, 2, 5})
        if (time <= most * factor * small) return factor * small;
    return 10 * small;
}

MeasuredDrawing drawingOf(const MeasuredTiming& timing, const TimeWindow& window) {
    const double length = microseconds(window.to - window.from);
    MeasuredDrawing drawing{{}, roundPart(length), length, microseconds(window.from)};
    for (const MeasuredSignal& signal : timing.signals)
        drawing.waves.push_back(waveOf(signal, timing.from + window.from, length));
    return drawing;
}

MeasuredDrawing drawingOf(const MeasuredTiming& timing) {
    constexpr Ticks shownPeriods = 4;
    const Ticks period = shownPeriod(timing);
    const auto exSync = std::ranges::find(timing.signals, "ExSync", &MeasuredSignal::name);
    const Ticks first = exSync->waveform.first(!exSync->isActiveLow).value_or(timing.from);
    // A multiple of the period, so that drawings of other settings have the same grid.
    const Ticks before = (first - timing.from) / period;
    const Ticks from = timing.from + (before > 0 ? before - 1 : 0) * period;
    MeasuredDrawing drawing{
        {}, microseconds(period), microseconds(shownPeriods * period), microseconds(from - timing.from)};
    for (const MeasuredSignal& signal : timing.signals)
        drawing.waves.push_back(waveOf(signal, from, drawing.end));
    return drawing;
}

bool hasTimePassed(Context& context) {
    return context.instance().board().now(context.instance().device()) > 0;
}

} // namespace

MeasuredDrawing addMeasuredTiming(Report& report, Context& context, const std::vector<WaveRequest>& waves,
                                  const std::optional<TimeWindow>& window) {
    requireStation(context.options(), context.host(), "'timing --measured'");
    const CopyInUse fresh(context, hasTimePassed(context)); // no time has passed on a copy
    const Interruption interruption;
    const MeasuredTiming timing = measureTiming(
        context.instance(), context.parameters(), waves, [&] { return !interruption.isAsked(); }, window);
    if (timing.isInterrupted) {
        report.exitCode = exitInterrupted;
        return {};
    }
    report.document["measured"] = asJson(timing);
    if (window)
        report.document["measured"]["window"] = {{"from", microseconds(window->from)},
                                                 {"to", microseconds(window->to)}};
    report.text += '\n' + tableOf(timing);
    report.text +=
        forPerson("(measured over " + durationText(timing.to - timing.from) + ": " +
                  numberText(timing.lines) + (timing.lines == 1 ? " line, " : " lines, ") +
                  numberText(timing.pictures) + (timing.pictures == 1 ? " picture)\n" : " pictures)\n"));
    for (const std::string& remark : timing.remarks)
        report.text += forPerson("(" + remark + ")\n");
    return window ? drawingOf(timing, *window) : drawingOf(timing);
}

} // namespace appletctl
