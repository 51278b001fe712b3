/** Makes the time of a station follow the wall clock. */
#ifndef VIRTUAL_BOARD_BOARD_WALLCLOCK_H
#define VIRTUAL_BOARD_BOARD_WALLCLOCK_H

#include "station/signals/Tick.h"

#include <algorithm>
#include <chrono>

namespace vboard {

class WallClock {
public:
    using Instant = std::chrono::steady_clock::time_point;
    using Duration = std::chrono::duration<double>; // seconds

    /** At `now` the time is `tick`; from then on it advances `factor` times as fast as the wall clock. */
    void start(station::Tick tick, double factor, Instant now) {
        m_tick = tick;
        m_factor = factor;
        m_start = now;
    }
    void stop() { m_factor = 0; }
    bool isRunning() const { return m_factor > 0; }
    station::Tick tick(Instant now) const {
        const double ticks = Duration(now - m_start).count() * m_factor * double{station::ticksPerSecond};
        return station::later(m_tick, static_cast<station::Tick>(std::clamp(ticks, 0.0, 9e18)));
    }
    /** Limits what is to be made up: from `reached` to tick(now) it is at most as long as `longest` takes. */
    void limitLag(station::Tick reached, Duration longest, Instant now) {
        if (durationOf(tick(now) - reached) <= longest) return;
        start(reached, m_factor, now - std::chrono::duration_cast<Instant::duration>(longest));
    }
    /** The duration of a number of ticks. */
    Duration durationOf(station::Tick ticks) const {
        return Duration(static_cast<double>(ticks) / (double{station::ticksPerSecond} * m_factor));
    }

private:
    station::Tick m_tick = 0;
    double m_factor = 0; // 0: stopped
    Instant m_start;
};

} // namespace vboard

#endif
