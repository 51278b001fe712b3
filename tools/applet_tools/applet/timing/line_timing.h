/** Checks for inconsistent line trigger values that the applet accepts. */
#ifndef APPLET_TOOLS_APPLET_TIMING_LINE_TIMING_H
#define APPLET_TOOLS_APPLET_TIMING_LINE_TIMING_H

#include "applet_tools/applet/timing/line_trigger.h"
#include "applet_tools/applet/timing/ticks.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace applet_tools {

struct TimingTrouble {
    const char* rule;               /**< "exposure", "delay" */
    std::vector<const char*> names; /**< the first one should be set */
    const char* why;
    double longest;     /**< limit of the first one, in whole ticks of the trigger */
    const char* orElse; /**< an alternative, shown after "or less"; may be empty */
};

/** Times in microseconds. A load may store invalid periods; they are not compared. */
inline std::vector<TimingTrouble> timingTroubles(std::int32_t mode, double period, double exposure,
                                                 double delay) {
    std::vector<TimingTrouble> troubles;
    if (!(period > 0)) return troubles;
    constexpr double tick = microsecondsPerTick, decimals = 1e10;
    const double wholeTicks =
        std::floor(period / tick + 1e-6) * tick; // 1e-6 against the division's rounding error
    const double longest = std::round(wholeTicks * decimals) / decimals;
    if (isGrabberControlled(mode) && exposure > period)
        troubles.push_back(
            {"exposure",
             {"FG_LINEEXPOSURE", "FG_LINEPERIODE"},
             "The exposure is longer than the line period, so the ExSync pulses run into each other. "
             "The period was lowered after the exposure was set, which does not shorten the exposure",
             longest,
             ", or a longer FG_LINEPERIODE"});
    constexpr double endOfDelay = 1048.568; // limit of its 17-bit counter
    if (delay > endOfDelay)
        troubles.push_back({"delay",
                            {"FG_LINETRIGGERDELAY"},
                            "The counter of the delay ends at 1048.568 µs, and the station of the virtual "
                            "board delays by no more",
                            std::min(longest, endOfDelay),
                            ""});
    else if (delay > period)
        troubles.push_back(
            {"delay",
             {"FG_LINETRIGGERDELAY", "FG_LINEPERIODE"},
             "ExSync2 is delayed by more than a line period, so it belongs to no line any more",
             longest,
             ", or a longer FG_LINEPERIODE"});
    return troubles;
}

} // namespace applet_tools

#endif
