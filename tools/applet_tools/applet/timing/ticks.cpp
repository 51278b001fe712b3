#include "applet_tools/applet/timing/ticks.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

#include <cmath>

namespace applet_tools {
namespace {

struct TimeUnit {
    std::string_view name;
    double ticks;
};

// Longer names before their suffixes.
constexpr TimeUnit units[] = {{"ticks", 1},
                              {"ns", ticksPerMicrosecond / 1e3},
                              {"us", ticksPerMicrosecond},
                              {"µs", ticksPerMicrosecond},
                              {"ms", ticksPerMicrosecond * 1e3},
                              {"s", ticksPerSecond}};

} // namespace

Ticks ticksFrom(std::string_view word) {
    for (const TimeUnit& unit : units) {
        if (!word.ends_with(unit.name)) continue;
        const auto number = floatingNumber(word.substr(0, word.size() - unit.name.size()));
        if (!number) break;
        constexpr Ticks longest = 1'000'000; // seconds
        const double ticks = std::round(*number * unit.ticks);
        if (ticks < 0 || ticks > static_cast<double>(longest * ticksPerSecond))
            throw UsageError(inQuotedWord(word) + " is outside of 0 to " + numberText(longest) + "s");
        return static_cast<Ticks>(ticks);
    }
    throw UsageError(inQuotedWord(word) +
                     " is not a time: write a number and a unit, such as 80ns, 200us, 10ms, 1.5s "
                     "or 25ticks");
}

std::string durationText(Ticks ticks) {
    const double time = microseconds(ticks);
    if (time >= 1e6) return numberText(time / 1e6) + " s";
    if (time >= 1e3) return numberText(time / 1e3) + " ms";
    return numberText(time) + " µs";
}

} // namespace applet_tools
