// Reads parameters repeatedly: a table redrawn in place on a terminal, else a line per round.

#include "applet_tools/applet/Condition.h"
#include "applet_tools/applet/values.h"
#include "applet_tools/base/Interruption.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/layout.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/print.h"
#include "appletctl/base/report_text.h"
#include "appletctl/base/terminal.h"
#include "appletctl/commands/Command.h"
#include "appletctl/draw/sparkline.h"

#include <CLI/CLI.hpp>

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <deque>
#include <functional>
#include <limits>
#include <optional>
#include <type_traits>

namespace appletctl {
namespace {

using Clock = Interruption::Clock;

struct Watched {
    Target target;
    ReadResult reading;
    std::optional<Value> minimum, maximum; // of a number, over all rounds
    std::deque<double> latest;             // of a number, in the last rounds
    std::optional<double> before;          // of a number, in the last round with a value
    std::optional<double> perSecond;       // the change since then
};

/** True for numbers of the same kind if the first is less than the second. */
bool isBelow(const Value& first, const Value& second) {
    return std::visit(
        [&](const auto& number) {
            using T = std::decay_t<decltype(number)>;
            if constexpr (std::is_arithmetic_v<T>) {
                const T* other = std::get_if<T>(&second);
                return other != nullptr && number < *other;
            } else {
                return false;
            }
        },
        first);
}

bool hasNumber(const Watched& watched) {
    return isNumber(watched.reading.value) && watched.target.parameter->kind() != REGISTER_KIND_ENUM;
}

void read(Context& context, Watched& watched, double secondsSinceLast) {
    watched.reading = context.read(watched.target);
    watched.perSecond.reset();
    if (watched.reading.error != FG_OK || !watched.reading.isMeasured || !hasNumber(watched)) {
        watched.before.reset();
        return;
    }
    const double now = asDouble(watched.reading.value);
    if (watched.before && secondsSinceLast > 0)
        watched.perSecond = (now - *watched.before) / secondsSinceLast;
    watched.before = now;
    const Value& value = watched.reading.value;
    if (!watched.minimum || isBelow(value, *watched.minimum)) watched.minimum = value;
    if (!watched.maximum || isBelow(*watched.maximum, value)) watched.maximum = value;
    constexpr std::size_t shownRounds = 32;
    if (std::isfinite(now)) watched.latest.push_back(now);
    if (watched.latest.size() > shownRounds) watched.latest.pop_front();
}

struct Round {
    int number;                        // from 1
    std::chrono::milliseconds elapsed; // since the first
    std::vector<Watched> watched;
    Clock::duration exact{}; // the same as elapsed, for rates
    bool isFailed = false;   // the condition of --fail-if holds
    bool isAlarm = false;    // that of --alarm-if or --lost-lines
    int alarms = 0;          // rounds in which it held
    std::string lastAlarm{}; // seconds of the last one
};

double seconds(const Round& round) { return static_cast<double>(round.elapsed.count()) / 1000; }

std::string secondsText(const Round& round) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", seconds(round));
    return text;
}

/** The value for display, or the reason why there is none. */
std::string shownValue(const ReadResult& reading, const std::string& value) {
    if (!reading.isMeasured) return "- (not measured)";
    return reading.error == FG_OK ? value : "(" + codeInWords(reading.error) + ")";
}

/** "+12.5". */
std::string rateText(double perSecond) {
    char text[32];
    std::snprintf(text, sizeof text, "%+.6g", perSecond);
    return text;
}

/** A record per parameter: seconds, name, value, unit; with rates the change per second. One more for an
 *  alarm. */
std::string asRecords(const Round& round, bool wantsRates) {
    std::string text;
    for (const Watched& watched : round.watched) {
        const Parameter& parameter = *watched.target.parameter;
        const ReadResult& reading = watched.reading;
        text += secondsText(round) + '\t' + watched.target.name() + '\t' +
                shownValue(reading, valueText(parameter, reading.value)) + '\t' + parameter.unit();
        if (wantsRates) text += '\t' + (watched.perSecond ? rateText(*watched.perSecond) : "-");
        text += '\n';
    }
    if (round.isAlarm) text += secondsText(round) + "\tALARM\n";
    return text;
}

/** "2.000  FG_WIDTH = 1024 pixel  FG_OVERFLOW = (-2010, ...)". */
std::string asLine(const Round& round, bool wantsRates) {
    std::string line = secondsText(round);
    if (isPlainOutput()) return asRecords(round, wantsRates);
    for (const Watched& watched : round.watched) {
        const ReadResult& reading = watched.reading;
        line += "  " + watched.target.name() + " = ";
        line += shownValue(reading, valueWithUnit(*watched.target.parameter, reading.value));
        if (wantsRates && watched.perSecond) line += " (" + rateText(*watched.perSecond) + "/s)";
    }
    return line + (round.isAlarm ? "  ALARM\n" : "\n");
}

nlohmann::ordered_json asJson(const Round& round, bool wantsRates) {
    nlohmann::ordered_json object = {{"round", round.number}, {"seconds", seconds(round)}};
    auto& parameters = object["parameters"] = nlohmann::ordered_json::array();
    for (const Watched& watched : round.watched) {
        auto& row = parameters.emplace_back(readingAsJson(watched.target, watched.reading));
        if (wantsRates && watched.perSecond) row["perSecond"] = *watched.perSecond;
    }
    if (round.isAlarm) object["alarm"] = true;
    return object;
}

std::string asDocument(const Round& round, bool wantsRates, bool isLook) {
    Report report;
    report.document = asJson(round, wantsRates);
    if (isLook) report.document["look"] = true;
    const bool isRead = std::ranges::all_of(
        round.watched, [](const Watched& watched) { return watched.reading.error == FG_OK; });
    if (round.isFailed || !isRead) report.exitCode = exitRefused;
    return documentText(report, "watch");
}

/** The number of alarms so far; it stays on screen, since a flag may clear itself. */
std::string alarmText(const Round& round, const Style& style) {
    if (round.alarms == 0) return "";
    const std::string text = "ALARM in " + numberText(round.alarms) + " of " + numberText(round.number) +
                             " rounds, the last at " + round.lastAlarm + " s";
    return "  " + style.alarm(text) + '\n';
}

/** Of this many parameters, from the first. */
Table tableOf(const Round& round, std::size_t shown, bool wantsRates) {
    const bool unicode = canDrawUnicode(STDOUT_FILENO);
    Table table;
    Words titles{"NAME", "VALUE", "UNIT", "MINIMUM", "MAXIMUM"};
    if (wantsRates) titles.emplace_back("PER SECOND");
    titles.emplace_back("COURSE");
    table.setTitles(std::move(titles));
    table.setDispensable({"COURSE", "MINIMUM", "MAXIMUM", "PER SECOND", "UNIT"});
    for (std::size_t i = 0; i < shown; ++i) {
        const Watched& watched = round.watched[i];
        const Parameter& parameter = *watched.target.parameter;
        const auto cell = [&](const std::optional<Value>& value) {
            return value ? valueText(parameter, *value) : "-";
        };
        const ReadResult& reading = watched.reading;
        Words cells{watched.target.name(), shownValue(reading, valueText(parameter, reading.value)),
                    parameter.unit(), cell(watched.minimum), cell(watched.maximum)};
        if (wantsRates) cells.push_back(watched.perSecond ? rateText(*watched.perSecond) : "-");
        cells.push_back(sparkline(watched.latest, unicode));
        table.addRow(std::move(cells));
    }
    return table;
}

/** How much of a round is shown. */
struct Extent {
    std::size_t shown; // parameters, from the first
    Table::Detail detail;
    bool hasEnd; // the number of those not shown, the alarm and the number of the round
};

std::string textOf(const Round& round, bool wantsRates, const Extent& extent) {
    const Style style = Style::forStream(STDOUT_FILENO);
    const std::size_t count = round.watched.size();
    std::string text = tableOf(round, extent.shown, wantsRates).render(style, extent.detail);
    if (!extent.hasEnd) return wrapped(text, outputWidth());
    if (extent.shown < count)
        text += style.faint("  (" + numberText(count - extent.shown) + " of " + numberText(count) +
                            " parameters are not shown: too few lines)") +
                '\n';
    text += alarmText(round, style) +
            style.faint("  round " + numberText(round.number) + ", " + secondsText(round) + " s") + '\n';
    return wrapped(text, outputWidth());
}

/** With few lines the values matter most: all else is left out first. */
std::string asTable(const Round& round, bool wantsRates, int lines) {
    using enum Table::Detail;
    const std::size_t count = round.watched.size();
    std::vector<Extent> extents{{count, titlesAndHidden, true}};
    for (std::size_t shown = std::min(count, static_cast<std::size_t>(lines)); shown > 0; --shown)
        extents.push_back({shown, titles, true});
    extents.push_back({1, titles, false});
    extents.push_back({1, rowsOnly, false});
    std::string text;
    for (const Extent& extent : extents) {
        text = textOf(round, wantsRates, extent);
        if (std::ranges::count(text, '\n') <= lines) break;
    }
    return text;
}

/** Redraws a text in place. */
class Screen {
public:
    /** The control sequences and as many lines of the text as the terminal has room for. */
    std::string redraw(const std::function<std::string(int lines)>& textFor) {
        const std::string back = m_lines == 0 ? "" : "\033[" + numberText(m_lines) + "A\r\033[J";
        const int most = room();
        const std::string text = textFor(most);
        std::size_t end = 0;
        for (m_lines = 0; m_lines < most && end < text.size(); ++m_lines)
            end = text.find('\n', end) + 1;
        // Without wrapping, so that each line occupies one row.
        return back + "\033[?7l" + text.substr(0, end) + "\033[?7h";
    }

private:
    /** Lines above the cursor. */
    static int room() {
        winsize size{};
        const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 1;
        return isKnown ? size.ws_row - 1 : 23;
    }

    int m_lines = 0;
};

enum class Form { table, text, document };

/** A table that is redrawn for a user, lines of text where that is not possible, documents for a program. With
 *  "trace" the accesses follow as text. */
Form formOf(const Options& options) {
    if (options.json) return Form::document;
    if (options.trace) return Form::text;
    if (isCapableTerminal(STDOUT_FILENO)) return Form::table;
    return options.plain || isatty(STDOUT_FILENO) == 1 ? Form::text : Form::document;
}

/** Conditions, at least one of which must hold. */
using Conditions = std::vector<Condition>;

/** The parameters read in each round: the named ones, and those in the conditions. */
std::vector<Watched> watchedTargets(std::vector<Target> targets, const Conditions& first,
                                    const Conditions& second) {
    for (const Conditions* conditions : {&first, &second})
        for (const Condition& condition : *conditions)
            std::ranges::copy(condition.targets(), std::back_inserter(targets));
    std::vector<Watched> watched;
    for (const Target& target : targets)
        if (std::ranges::none_of(watched,
                                 [&](const Watched& one) { return one.target.name() == target.name(); })) {
            watched.emplace_back();
            watched.back().target = target;
        }
    return watched;
}

bool holdsOneOf(const Conditions& conditions, const Round& round) {
    const auto reading = [&](const Target& target) {
        return std::ranges::find_if(round.watched,
                                    [&](const Watched& one) { return one.target.name() == target.name(); })
            ->reading;
    };
    return std::ranges::any_of(conditions,
                               [&](const Condition& condition) { return condition.holds(reading); });
}

/** Reads all parameters and evaluates the conditions. */
void readRound(Context& context, Round& round, Clock::duration sinceStart, const Conditions& failures,
               const Conditions& alarms) {
    const std::chrono::duration<double> sinceLast = sinceStart - round.exact;
    ++round.number;
    round.exact = sinceStart;
    round.elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart);
    for (Watched& watched : round.watched)
        read(context, watched, sinceLast.count());
    round.isFailed = holdsOneOf(failures, round);
    round.isAlarm = holdsOneOf(alarms, round);
    if (!round.isAlarm) return;
    ++round.alarms;
    round.lastAlarm = secondsText(round);
}

struct WatchOptions {
    int interval = 1000;               /**< --interval: milliseconds from round to round */
    int count = 0;                     /**< --count: rounds; 0: no end */
    std::string failIf;                /**< --fail-if: a condition (see Condition) */
    std::string alarmIf;               /**< --alarm-if: the same */
    bool isAlarmedByLostLines = false; /**< --lost-lines */
    bool wantsRates = false;           /**< --rate: the change per second */
    bool areGroups = false;            /**< -g: the names are groups */
};

void addWatchOptions(CLI::App& command, Options& options) {
    auto& own = options.own<WatchOptions>();
    // An unset shell variable must not disable the condition.
    const auto isCondition = [](const std::string& text) {
        return std::string(text.empty() ? "the condition is empty" : "");
    };
    constexpr int longestInterval = 24 * 60 * 60 * 1000;
    command.add_option("--interval", own.interval, "Milliseconds from round to round, 1000 if not given")
        ->type_name("MS")
        ->check(CLI::Range(1, longestInterval));
    command.add_option("--count", own.count, "Number of rounds; without it the watch has no end")
        ->type_name("N")
        ->check(CLI::Range(1, std::numeric_limits<int>::max()));
    command
        .add_option("--fail-if", own.failIf,
                    "Condition that ends the watch with exit code 1, such as 'FG_OVERFLOW != 0 || NAME > 5'")
        ->type_name("EXPR")
        ->check(isCondition);
    command
        .add_option("--alarm-if", own.alarmIf,
                    "Condition that sounds the terminal's bell and marks the round")
        ->type_name("EXPR")
        ->check(isCondition);
    command.add_flag("--lost-lines", own.isAlarmedByLostLines,
                     "Alarm when lines are lost: the same as --alarm-if 'FG_OVERFLOW != 0'");
    command.add_flag("--rate", own.wantsRates, "Show the change of each number per second");
    command.add_flag("-g,--group", own.areGroups, "The names are groups: all their parameters");
}

/** Reads the parameters until a condition, a number of rounds or a signal ends it. */
class Watch {
public:
    Watch(Context& context, const Words& names)
        : m_context(context)
        , m_options(context.options())
        , m_own(m_options.of<WatchOptions>())
        , m_form(formOf(m_options))
        // "trace" adds the accesses, so the document holds all rounds and is printed at the end.
        , m_isOneDocument(m_options.trace && m_options.json) {
        const ParameterList& parameters = context.parameters();
        if (!m_own.failIf.empty()) m_failures.emplace_back(parameters, m_own.failIf);
        if (!m_own.alarmIf.empty()) m_alarms.emplace_back(parameters, m_own.alarmIf);
        if (m_own.isAlarmedByLostLines) m_alarms.emplace_back(parameters, "FG_OVERFLOW != 0");
        for (const Conditions* conditions : {&m_failures, &m_alarms})
            for (const Condition& condition : *conditions)
                requireMeasured(context, condition);
        const std::vector<Target> named =
            m_own.areGroups ? targetsOfGroups(parameters, names) : findTargets(parameters, names);
        m_round.watched = watchedTargets(named, m_failures, m_alarms);
        m_report.isPrinted = !m_isOneDocument;
        if (m_isOneDocument) m_report.document["rounds"] = nlohmann::ordered_json::array();
    }

    Report run() {
        const std::chrono::milliseconds interval(m_own.interval);
        const Clock::time_point start = Clock::now();
        Clock::time_point due = start;
        do {
            readRound(m_context, m_round, Clock::now() - start, m_failures, m_alarms);
            if (!show()) return endOfOutput();
            if (m_round.isFailed)
                return refused("round " + numberText(m_round.number) + ": " + printable(m_own.failIf));
            due = std::max(due + interval, Clock::now());
        } while (m_round.number != m_own.count && m_context.waitUntil(m_interruption, due));
        return ended();
    }

private:
    /** False, with errno, if the output of the round fails. */
    bool show() {
        if (!m_isOneDocument) return writeOut(shown());
        m_report.document["rounds"].push_back(asJson(m_round, m_own.wantsRates));
        return true;
    }

    std::string shown() {
        if (m_options.quiet && !m_options.json) return "";
        if (m_form == Form::document) return asDocument(m_round, m_own.wantsRates, m_options.look);
        const std::string bell = m_round.isAlarm && isatty(STDOUT_FILENO) == 1 ? "\a" : "";
        if (m_form != Form::table) return bell + asLine(m_round, m_own.wantsRates);
        return bell + m_screen.redraw([&](int lines) { return asTable(m_round, m_own.wantsRates, lines); });
    }

    /** A closed pipe, or a signal, is not a failure. */
    Report endOfOutput() {
        if (errno == EPIPE) return std::move(m_report);
        return m_interruption.isAsked() ? ended() : refused(unwrittenOutput);
    }

    Report refused(const std::string& problem) {
        m_report.problems.push_back(problem);
        m_report.exitCode = exitRefused;
        return std::move(m_report);
    }

    Report ended() {
        if (m_interruption.isAsked()) m_report.exitCode = exitInterrupted;
        return std::move(m_report);
    }

    const Interruption m_interruption;
    Context& m_context;
    const Options& m_options;
    const WatchOptions& m_own;
    const Form m_form;
    const bool m_isOneDocument;
    Conditions m_failures, m_alarms;
    Round m_round{.number = 0, .elapsed = {}, .watched = {}};
    Screen m_screen;
    Report m_report;
};

Report watchParameters(Context& context, const Words& names) { return Watch(context, names).run(); }

} // namespace

extern const Command watchCommand;
const Command watchCommand = {
    .name = "watch",
    .help = "Read parameters repeatedly, until Ctrl-C",
    .argument = "NAME",
    .argumentHelp = "Parameters",
    .examples = {{"watch FG_FILLLEVEL FG_OVERFLOW", "every second, until Ctrl-C"},
                 {"watch FG_OVERFLOW --interval 200 --fail-if 'FG_OVERFLOW != 0'",
                  "end with exit code 1 when lines are lost"}},
    .fewest = 1,
    .most = -1,
    .run = watchParameters,
    .addOptions = addWatchOptions,
    .showsValues = true,
    .takesLong = true,
};

} // namespace appletctl
