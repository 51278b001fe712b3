#include "station/signals/Signals.h"

#include <algorithm>

namespace station {
namespace {

constexpr std::size_t indexOf(Tap tap) { return static_cast<std::size_t>(tap); }

} // namespace

Edge History::at(std::uint64_t number) const {
    const Tick edge = m_edges[number % capacity];
    return {edge >> 1, (edge & 1) != 0};
}

Trace History::trace(Tick from, Tick to, bool rest) const {
    Trace trace{.level = rest};
    if (m_count == 0) return trace;
    const std::uint64_t oldest = m_count > capacity ? m_count - capacity : 0;
    std::uint64_t first = oldest;
    for (std::uint64_t end = m_count; first < end;) { // the first edge at `from` or later
        const std::uint64_t middle = first + (end - first) / 2;
        if (at(middle).tick < from)
            first = middle + 1;
        else
            end = middle;
    }
    if (first > oldest)
        trace.level = at(first - 1).level;
    else if (oldest > 0) {
        trace.complete = false;
        trace.level = !at(oldest).level;
    }
    for (std::uint64_t number = first; number < m_count && at(number).tick <= to; ++number)
        trace.edges.push_back(at(number));
    return trace;
}

void Signals::notify(std::uint8_t signal, bool level, Tick tick) {
    for (std::size_t tap = 0; tap < tapCount; ++tap)
        if ((m_taps[signal] >> tap & 1) != 0 && level != m_routes[tap].invert)
            m_handler.rises(static_cast<Tap>(tap), tick);
}

void Signals::beginPulse(std::uint8_t signal, Tick tick) {
    m_levels[signal] = true;
    m_pulses |= std::uint64_t{1} << signal;
    m_pulseEnd = tick + 1;
    notify(signal, true, tick);
}

void Signals::endPulses(Tick tick) {
    m_pulseEnd = never;
    for (std::uint8_t signal = lineStart; signal <= frameEnd; ++signal) {
        if ((m_pulses >> signal & 1) == 0) continue;
        m_levels[signal] = false;
        notify(signal, false, tick);
    }
    m_pulses = 0;
}

void Signals::route(Tap tap, Route route, Tick tick, bool silently) {
    Route& present = m_routes[indexOf(tap)];
    if (route.select >= signalCount) route.select = lowSignal;
    const bool before = level(present);
    const auto mask = static_cast<std::uint8_t>(1U << indexOf(tap));
    m_taps[present.select] = static_cast<std::uint8_t>(m_taps[present.select] & ~mask);
    m_taps[route.select] = static_cast<std::uint8_t>(m_taps[route.select] | mask);
    present = route;
    if (!silently && !before && level(route)) m_handler.rises(tap, tick);
}

Trace Signals::pulses(std::uint8_t of, bool level, Tick from, Tick to) const {
    // Start one tick earlier: a pulse may still be high at the beginning.
    Trace cause = m_history[of].trace(from > 0 ? from - 1 : 0, to, m_rest[of]);
    Trace trace{.level = false, .complete = cause.complete};
    for (const Edge& edge : cause.edges) {
        if (edge.level != level) continue;
        const bool isEarlier = edge.tick < from;
        if (isEarlier)
            trace.level = true;
        else
            trace.edges.push_back({edge.tick, true});
        if (edge.tick + 1 <= to) trace.edges.push_back({edge.tick + 1, false});
    }
    return trace;
}

Trace Signals::trace(Route route, Tick from, Tick to) const {
    if (route.select >= signalCount) route.select = lowSignal;
    Trace trace;
    if (route.select >= lineStart) {
        const bool isFrame = route.select >= frameStart;
        const bool isStart = route.select == lineStart || route.select == frameStart;
        trace = pulses(isFrame ? frameValid : lineValid, isStart, from, to);
    } else {
        trace = m_history[route.select].trace(from, to, m_rest[route.select]);
    }
    if (!route.invert) return trace;
    trace.level = !trace.level;
    for (Edge& edge : trace.edges)
        edge.level = !edge.level;
    return trace;
}

} // namespace station
