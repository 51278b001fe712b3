/** The end of a wait. */
#ifndef HOST_DEADLINE_H
#define HOST_DEADLINE_H

#include "applet_tools/applet/timing/ticks.h"
#include "applet_tools/base/numbers.h"
#include "host/LastError.h"

#include <chrono>
#include <cmath>

namespace host {

/** A time-out in the station's time, and optionally in wall clock time. */
class Deadline {
public:
    /** Throws Error for a time that is not a number, or negative. */
    Deadline(applet_tools::Ticks now, double seconds, double wall) {
        constexpr double longest = 1e9; // seconds
        if (!(seconds >= 0) || !(wall == wall))
            throw Error(VEXO_ERR_ARGUMENT, "a time-out of " + applet_tools::numberText(seconds) +
                                               " seconds: 0 or more is accepted");
        const double ticks = std::min(seconds, longest) * static_cast<double>(applet_tools::ticksPerSecond);
        m_tick = now + static_cast<applet_tools::Ticks>(std::llround(ticks));
        if (wall >= 0)
            m_wall = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                        std::chrono::duration<double>(std::min(wall, longest)));
    }

    applet_tools::Ticks tick() const { return m_tick; }
    bool isOver(applet_tools::Ticks now) const { return now >= m_tick || Clock::now() >= m_wall; }

private:
    using Clock = std::chrono::steady_clock;

    applet_tools::Ticks m_tick;
    Clock::time_point m_wall = Clock::time_point::max();
};

} // namespace host

#endif
