/** An analyzer: periods and number of the rising edges of a signal since the last clear. */
#ifndef STATION_TIMING_ANALYZER_H
#define STATION_TIMING_ANALYZER_H

#include "station/signals/Tick.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace station {

class Analyzer {
public:
    void clear() { *this = {}; }
    void rises(Tick tick) {
        if (m_edges++ > 0) {
            m_current = std::min(tick - m_last, longest);
            m_maximum = std::max(m_maximum, m_current);
            m_minimum = m_edges == 2 ? m_current : std::min(m_minimum, m_current);
        }
        m_last = tick;
    }
    /** Edges since the last clear. */
    std::uint64_t edges() const { return m_edges; }
    /* Periods in ticks; 0 until there were two edges. */
    Tick current() const { return m_current; }
    Tick maximum() const { return m_maximum; }
    Tick minimum() const { return m_minimum; }

private:
    static constexpr Tick longest = std::numeric_limits<std::uint32_t>::max();

    std::uint64_t m_edges = 0;
    Tick m_last = 0;
    Tick m_current = 0;
    Tick m_maximum = 0;
    Tick m_minimum = 0;
};

} // namespace station

#endif
