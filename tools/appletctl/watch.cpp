// Reads parameters over and over: a table redrawn in place on a terminal, else a line for each round.

#include "appletctl/commands.h"
#include "appletctl/text.h"
#include "appletctl/values.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <optional>
#include <type_traits>

namespace appletctl {
namespace {

using Clock = std::chrono::steady_clock;

volatile std::sig_atomic_t isAskedToEnd = 0;

void askToEnd(int) { isAskedToEnd = 1; }

sigset_t endingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

/**
 * From now on the ending signals ask for an end, a second one forces it; a dead pipe is told by the write.
 */
void catchSignals() {
    struct sigaction action {};
    action.sa_handler = askToEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND); // no SA_RESTART: a write that hangs ends too
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
}

/** Waits until `due`. False when it is time to end: a signal came, or nobody reads the output any more. */
bool waitUntil(Clock::time_point due) {
    const sigset_t ending = endingSignals();
    sigset_t before;
    // Let through during the wait only, so that none gets lost between the look and the wait.
    pthread_sigmask(SIG_BLOCK, &ending, &before);
    bool goesOn = isAskedToEnd == 0;
    while (goesOn) {
        const auto left = std::chrono::duration_cast<std::chrono::nanoseconds>(due - Clock::now()).count();
        if (left <= 0) break;
        const timespec timeout{left / 1'000'000'000, left % 1'000'000'000};
        pollfd output{STDOUT_FILENO, 0, 0}; // reports nothing but errors
        const int result = ppoll(&output, 1, &timeout, &before);
        goesOn = result <= 0 && isAskedToEnd == 0;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return goesOn;
}

struct Watched {
    Target target;
    Reading reading;
    std::optional<Value> minimum, maximum; // of numbers, over all rounds
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

void read(Instance& instance, Watched& watched) {
    watched.reading = readValue(instance, watched.target);
    if (watched.reading.error != FG_OK || !isNumber(watched)) return;
    const Value& value = watched.reading.value;
    if (!watched.minimum || isBelow(value, *watched.minimum)) watched.minimum = value;
    if (!watched.maximum || isBelow(*watched.maximum, value)) watched.maximum = value;
}

struct Round {
    int number;                        // from 1
    std::chrono::milliseconds elapsed; // since the first
    std::vector<Watched> watched;
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
        const Reading& reading = watched.reading;
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
    return documentText(report, "watch");
}

std::string asTable(const Round& round) {
    Table table;
    table.setTitles({"NAME", "VALUE", "UNIT", "MINIMUM", "MAXIMUM"});
    for (const Watched& watched : round.watched) {
        const Parameter& parameter = *watched.target.parameter;
        const auto cell = [&](const std::optional<Value>& value) {
            return value ? valueText(parameter, *value) : "-";
        };
        const Reading& reading = watched.reading;
        table.addRow({watched.target.name(),
                      reading.error == FG_OK ? valueText(parameter, reading.value)
                                             : "(" + codeInWords(reading.error) + ")",
                      parameter.unit(), cell(watched.minimum), cell(watched.maximum)});
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

} // namespace

Report watchParameters(Context& context, const Words& names) {
    catchSignals();
    Instance& instance = context.instance();
    const ParameterList& parameters = context.parameters();
    Round round{};
    for (const Target& target : findTargets(parameters, names))
        round.watched.push_back({.target = target, .reading = {}, .minimum = {}, .maximum = {}});

    const bool isRedrawn = !context.options().json && isCapableTerminal(STDOUT_FILENO);
    Screen screen;
    const auto shown = [&] {
        if (context.options().json) return asDocument(round);
        return isRedrawn ? screen.redraw(asTable(round)) : asLine(round);
    };

    Report report;
    report.isPrinted = true;
    const std::chrono::milliseconds interval(context.options().watchInterval);
    const Clock::time_point start = Clock::now();
    Clock::time_point due = start;
    do {
        ++round.number;
        round.elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
        for (Watched& watched : round.watched)
            read(instance, watched);
        if (!writeOut(shown())) {
            if (errno == EPIPE || isAskedToEnd != 0) return report;
            report.problems.push_back("the output could not be written");
            report.exitCode = exitRefused;
            return report;
        }
        due = std::max(due + interval, Clock::now());
    } while (round.number != context.options().watchCount && waitUntil(due));
    return report;
}

} // namespace appletctl
