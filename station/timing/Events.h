/** The events of the design. */
#ifndef STATION_TIMING_EVENTS_H
#define STATION_TIMING_EVENTS_H

#include "station/signals/Tick.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace station {

inline constexpr std::size_t inputCount = 12;

enum class Event : std::uint8_t {
    frameStart,
    frameEnd,
    lineStart,
    lineEnd,
    linkLost,
    overflow,
    temperatureAlarm,
    glitch,
    customSignal0,
    customSignal1,
    firstPin // of each input the rising edge, then the falling one
};
inline constexpr std::size_t eventCount = static_cast<std::size_t>(Event::firstPin) + 2 * inputCount;

constexpr Event pinEvent(std::size_t input, bool rising) {
    return static_cast<Event>(static_cast<std::size_t>(Event::firstPin) + 2 * input + (rising ? 0 : 1));
}

struct Occurrence {
    Tick tick;
    Event event;
};

/** The occurrences in order. The queue keeps the last `capacity`; the counts include all. */
class Events {
public:
    static constexpr std::size_t capacity = 65536;

    void add(Event event, Tick tick) {
        if (m_ring.empty()) m_ring.resize(capacity);
        ++m_counts[static_cast<std::size_t>(event)];
        m_ring[m_written++ % capacity] = {tick, event};
    }
    /** Takes the oldest occurrence from the queue. */
    std::optional<Occurrence> take() {
        skipDropped();
        if (m_taken == m_written) return std::nullopt;
        return m_ring[m_taken++ % capacity];
    }
    /** How many were dropped because the queue was full. */
    std::uint64_t dropped() {
        skipDropped();
        return m_dropped;
    }
    /** How often an event occurred since its count was last cleared. */
    std::uint64_t count(Event event) const { return m_counts[static_cast<std::size_t>(event)]; }
    void clearCount(Event event) { m_counts[static_cast<std::size_t>(event)] = 0; }

private:
    void skipDropped() {
        if (m_written - m_taken <= capacity) return;
        m_dropped += m_written - capacity - m_taken;
        m_taken = m_written - capacity;
    }

    std::vector<Occurrence> m_ring;
    std::uint64_t m_written = 0;
    std::uint64_t m_taken = 0;
    std::uint64_t m_dropped = 0;
    std::array<std::uint64_t, eventCount> m_counts{};
};

} // namespace station

#endif
