// Reads parameters over and over: a table redrawn in place on a terminal, else a line for each round.

#include "appletctl/applet/Condition.h"
#include "appletctl/applet/values.h"
#include "appletctl/base/Interruption.h"
#include "appletctl/base/text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/draw/sparkline.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <deque>
#include <limits>
#include <optional>
#include <type_traits>

namespace appletctl {
namespace {

using Clock = Interruption::Clock;

struct Watched {
    Target target;
    ReadResult reading;
    std::optional<Value> minimum, maximum; // of numbers, over all rounds
    std::deque<double> course;             // of numbers, the last rounds
};

/** True for numbers of the same kind, the first below the second. */
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

bool isNumber(const Watched& watched) {
    const bool isArithmetic =
        std::visit([](const auto& native) { return std::is_arithmetic_v<std::decay_t<decltype(native)>>; },
                   watched.reading.value);
    return isArithmetic && watched.target.parameter->kind() != REGISTER_KIND_ENUM;
}

double asDouble(const Value& value) {
    return std::visit(
        [](const auto& native) {
            if constexpr (std::is_arithmetic_v<std::decay_t<decltype(native)>>)
                return static_cast<double>(native);
            else
                return 0.0;
        },
        value);
}

void read(Instance& instance, Watched& watched) {
    watched.reading = readValue(instance, watched.target);
    if (watched.reading.error != FG_OK || !isNumber(watched)) return;
    const Value& value = watched.reading.value;
    if (!watched.minimum || isBelow(value, *watched.minimum)) watched.minimum = value;
    if (!watched.maximum || isBelow(*watched.maximum, value)) watched.maximum = value;
    constexpr std::size_t shownRounds = 32;
    const double number = asDouble(value);
    if (std::isfinite(number)) watched.course.push_back(number);
    if (watched.course.size() > shownRounds) watched.course.pop_front();
}

struct Round {
    int number;                        // from 1
    std::chrono::milliseconds elapsed; // since the first
    std::vector<Watched> watched;
    bool isFailed = false; // the condition of --fail-if holds
};

double seconds(const Round& round) { return static_cast<double>(round.elapsed.count()) / 1000; }

std::string secondsText(const Round& round) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", seconds(round));
    return text;
}

/** "2.000  FG_WIDTH = 1024 pixel  FG_OVERFLOW = (-2010, ...)". */
std::string asLine(const Round& round) {
    std::string line = secondsText(round);
    for (const Watched& watched : round.watched) {
        const ReadResult& reading = watched.reading;
        line += "  " + watched.target.name() + " = ";
        line += reading.error == FG_OK ? valueWithUnit(*watched.target.parameter, reading.value)
                                       : "(" + codeInWords(reading.error) + ")";
    }
    return line + '\n';
}

std::string asDocument(const Round& round) {
    Report report;
    report.document = {{"round", round.number}, {"seconds", seconds(round)}};
    auto& parameters = report.document["parameters"] = nlohmann::ordered_json::array();
    for (const Watched& watched : round.watched) {
        parameters.push_back(readingAsJson(watched.target, watched.reading));
        if (watched.reading.error != FG_OK) report.exitCode = exitRefused;
    }
    if (round.isFailed) report.exitCode = exitRefused;
    return documentText(report, "watch");
}

std::string asTable(const Round& round) {
    const bool unicode = canDrawUnicode(STDOUT_FILENO);
    Table table;
    table.setTitles({"NAME", "VALUE", "UNIT", "MINIMUM", "MAXIMUM", "COURSE"});
    for (const Watched& watched : round.watched) {
        const Parameter& parameter = *watched.target.parameter;
        const auto cell = [&](const std::optional<Value>& value) {
            return value ? valueText(parameter, *value) : "-";
        };
        const ReadResult& reading = watched.reading;
        table.addRow({watched.target.name(),
                      reading.error == FG_OK ? valueText(parameter, reading.value)
                                             : "(" + codeInWords(reading.error) + ")",
                      parameter.unit(), cell(watched.minimum), cell(watched.maximum),
                      sparkline(watched.course, unicode)});
    }
    const Style style = Style::forStream(STDOUT_FILENO);
    return table.render(style) +
           style.faint("  round " + numberText(round.number) + ", " + secondsText(round) + " s") + '\n';
}

/** Draws a text over the one that it drew before. */
class Screen {
public:
    /** The control sequences and as many lines as the terminal has room for. */
    std::string redraw(const std::string& text) {
        const std::string back = m_lines == 0 ? "" : "\033[" + numberText(m_lines) + "A\r\033[J";
        std::size_t end = 0;
        m_lines = 0;
        for (const int most = room(); m_lines < most && end < text.size(); ++m_lines)
            end = text.find('\n', end) + 1;
        // Without wrapping, so that each line takes one row.
        return back + "\033[?7l" + text.substr(0, end) + "\033[?7h";
    }

private:
    /** Lines above that of the cursor. */
    static int room() {
        winsize size{};
        const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 1;
        return isKnown ? size.ws_row - 1 : 23;
    }

    int m_lines = 0;
};

enum class Form { table, text, document };

/** A table that is redrawn for a person, lines of text where it cannot be, documents for a program. */
Form formOf(const Options& options) {
    if (options.json) return Form::document;
    if (isCapableTerminal(STDOUT_FILENO)) return Form::table;
    return options.plain || isatty(STDOUT_FILENO) == 1 ? Form::text : Form::document;
}

/** What is read in each round: the named ones, and those of the condition that are not among them. */
std::vector<Watched> watchedTargets(std::vector<Target> targets, const std::optional<Condition>& condition) {
    std::vector<Watched> watched;
    if (condition) std::ranges::copy(condition->targets(), std::back_inserter(targets));
    for (const Target& target : targets)
        if (std::ranges::none_of(watched,
                                 [&](const Watched& one) { return one.target.name() == target.name(); }))
            watched.push_back({.target = target, .reading = {}, .minimum = {}, .maximum = {}, .course = {}});
    return watched;
}

bool holds(const Condition& condition, const Round& round) {
    return condition.holds([&](const Target& target) {
        return std::ranges::find_if(round.watched,
                                    [&](const Watched& one) { return one.target.name() == target.name(); })
            ->reading;
    });
}

struct WatchOptions {
    int interval = 1000; /**< --interval: milliseconds from round to round */
    int count = 0;       /**< --count: rounds; 0: no end */
    std::string failIf;  /**< --fail-if: a condition (see Condition) */
};

void addWatchOptions(CLI::App& command, Options& options) {
    auto& own = options.own<WatchOptions>();
    constexpr int longestInterval = 24 * 60 * 60 * 1000;
    command.add_option("--interval", own.interval, "Milliseconds from round to round")
        ->type_name("MS")
        ->check(CLI::Range(1, longestInterval));
    command.add_option("--count", own.count, "Number of rounds; without it the watch has no end")
        ->type_name("N")
        ->check(CLI::Range(1, std::numeric_limits<int>::max()));
    command
        .add_option("--fail-if", own.failIf,
                    "Condition that ends the watch with exit code 1, such as 'FG_OVERFLOW != 0 || NAME > 5'")
        ->type_name("EXPR");
}

Report watchParameters(Context& context, const Words& names) {
    const Options& options = context.options();
    const auto& own = options.of<WatchOptions>();
    const Interruption interruption;
    Instance& instance = context.instance();
    const ParameterList& parameters = context.parameters();
    std::optional<Condition> condition;
    if (!own.failIf.empty()) condition.emplace(parameters, own.failIf);
    Round round{
        .number = 0, .elapsed = {}, .watched = watchedTargets(findTargets(parameters, names), condition)};

    const Form form = formOf(options);
    Screen screen;
    const auto shown = [&] {
        if (options.quiet && !options.json) return std::string();
        if (form == Form::document) return asDocument(round);
        return form == Form::table ? screen.redraw(asTable(round)) : asLine(round);
    };

    Report report;
    report.isPrinted = true;
    const std::chrono::milliseconds interval(own.interval);
    const Clock::time_point start = Clock::now();
    Clock::time_point due = start;
    bool goesOn = true;
    while (goesOn) {
        ++round.number;
        round.elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
        for (Watched& watched : round.watched)
            read(instance, watched);
        round.isFailed = condition && holds(*condition, round);
        if (!writeOut(shown())) {
            if (errno == EPIPE) return report;
            if (interruption.isAsked()) break;
            report.problems.push_back("the output could not be written");
            report.exitCode = exitRefused;
            return report;
        }
        if (round.isFailed) {
            report.problems.push_back("round " + numberText(round.number) + ": " + printable(own.failIf));
            report.exitCode = exitRefused;
            return report;
        }
        due = std::max(due + interval, Clock::now());
        goesOn = round.number != own.count && interruption.waitUntil(due);
    }
    if (interruption.isAsked()) report.exitCode = exitInterrupted;
    return report;
}

} // namespace

extern const Command watchCommand;
const Command watchCommand = {
    .name = "watch",
    .help = "Read parameters over and over; ends on Ctrl-C",
    .argument = "NAME",
    .argumentHelp = "Parameters",
    .fewest = 1,
    .most = -1,
    .run = watchParameters,
    .addOptions = addWatchOptions,
};

} // namespace appletctl
