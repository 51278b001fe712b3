/** Advances the time of a virtual station. */
#ifndef PRODUCER_DEVICE_BOARD_CLOCK_H
#define PRODUCER_DEVICE_BOARD_CLOCK_H

#include "device/board/BoardStation.h"

#include <chrono>
#include <cstdint>

namespace producer {

/**
 * Only this class advances simulated time, in one thread. The board's own clock is not used: it catches up in
 * each access, which would take all of the time on a machine that is too slow.
 *
 * VBOARD_CLOCK chooses: "wall" (the default) follows real time; on a machine that is too slow for it,
 * simulated time falls behind. "stepped" advances only while an acquisition has a buffer to fill, as fast as
 * possible: the same settings then give the same pictures, however slow the client is.
 */
class Clock {
public:
    enum class Kind : std::uint8_t { wall, stepped };
    /** Throws INVALID_PARAMETER for an unknown value. */
    static Kind chosen();

    Clock(BoardStation& station, Kind kind) : m_station(station), m_kind(kind), m_last(Time::now()) {}

    /** Advances the time by a step. `wanted`: the picture that an acquisition has a buffer for, 0 if it has none. The
     *  stepped clock stops at the arrival of that picture. */
    void move(std::int64_t wanted);
    /** The delay before the next step. */
    std::chrono::microseconds pause(bool isAcquiring, bool isWanted) const;

private:
    using Time = std::chrono::steady_clock;

    BoardStation& m_station;
    const Kind m_kind;
    Time::time_point m_last; // real time up to which simulated time has advanced
};

} // namespace producer

#endif
