/** How the time of a virtual station moves. */
#ifndef PRODUCER_DEVICE_CLOCK_H
#define PRODUCER_DEVICE_CLOCK_H

#include "device/Station.h"

#include <chrono>

namespace producer {

/**
 * The one place that lets simulated time move. One thread uses it. The board's own clock is not used: it catches up in
 * each access, and a machine that is too slow for that would spend all of its time there.
 *
 * VBOARD_CLOCK chooses: "wall" (the default) follows real time; on a machine that is too slow for it simulated time
 * falls behind. "stepped" moves only while an acquisition has a buffer to fill, as fast as it can: the same settings
 * give the same pictures then, however slow the client is.
 */
class Clock {
public:
    enum class Kind : std::uint8_t { wall, stepped };
    /** Throws INVALID_PARAMETER for a word that is none. */
    static Kind chosen();

    Clock(Station& station, Kind kind) : m_station(station), m_kind(kind), m_last(Time::now()) {}

    /** Lets time move a step. `isWanted`: an acquisition has a buffer to fill. */
    void move(bool isWanted);
    /** How long to wait before the next step. */
    std::chrono::microseconds pause(bool isAcquiring, bool isWanted) const;

private:
    using Time = std::chrono::steady_clock;

    Station& m_station;
    const Kind m_kind;
    Time::time_point m_last; // real time that simulated time has reached
};

} // namespace producer

#endif
