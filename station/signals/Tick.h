/** Time of the station: a count of ticks of 8 ns since the board was opened. */
#ifndef STATION_SIGNALS_TICK_H
#define STATION_SIGNALS_TICK_H

#include <algorithm>
#include <cstdint>
#include <limits>

namespace station {

using Tick = std::uint64_t;

/** A product of two 64-bit numbers. */
__extension__ typedef unsigned __int128 Wide;

inline constexpr Tick ticksPerSecond = 125'000'000;
inline constexpr double ticksPerMicrosecond = 125.0;
/** Later than any time: the tick of an event that will not happen. */
inline constexpr Tick never = std::numeric_limits<Tick>::max();
/** The end of time, after 2300 years. */
inline constexpr Tick lastTick = never / 2;

/** `tick + ticks`, or never. */
constexpr Tick later(Tick tick, Tick ticks) { return ticks < never - tick ? tick + ticks : never; }

/** A time in µs as the nearest tick, halves up, within limits. NaN becomes the minimum. */
constexpr Tick ticksOf(double microseconds, Tick minimum, Tick maximum) {
    const double ticks = microseconds * ticksPerMicrosecond + 0.5;
    if (!(ticks >= static_cast<double>(minimum))) return minimum;
    if (ticks >= static_cast<double>(maximum)) return maximum;
    return std::max(static_cast<Tick>(ticks), minimum);
}

/** The multiples of a fraction of ticks, each rounded down, without drift. */
class FractionClock {
public:
    /** Multiple 0 is at `tick`; a denominator of 0 counts as 1. */
    void start(Tick tick, std::uint64_t numerator, std::uint64_t denominator) {
        m_tick = tick;
        m_rest = 0;
        m_numerator = numerator;
        m_denominator = std::max(denominator, std::uint64_t{1});
        m_whole = m_numerator / m_denominator;
        m_part = m_numerator % m_denominator;
    }
    /** The current multiple. */
    Tick tick() const { return m_tick; }
    /** Advances to the next multiple. */
    void step() {
        m_tick = later(m_tick, m_whole);
        m_rest += m_part;
        if (m_rest < m_denominator) return;
        m_rest -= m_denominator;
        m_tick = later(m_tick, 1);
    }
    /** Advances by `steps`. */
    void skip(std::uint64_t steps) {
        const Wide sum = Wide{steps} * m_numerator + m_rest;
        const Wide ticks = sum / m_denominator;
        m_rest = static_cast<std::uint64_t>(sum % m_denominator);
        m_tick = ticks < Wide{never} ? later(m_tick, static_cast<Tick>(ticks)) : never;
    }

private:
    Tick m_tick = 0;
    std::uint64_t m_numerator = 1;
    std::uint64_t m_denominator = 1;
    std::uint64_t m_whole = 1; // numerator / denominator
    std::uint64_t m_part = 0;  // and its remainder
    std::uint64_t m_rest = 0;  // of the current multiple, below the denominator
};

} // namespace station

#endif
