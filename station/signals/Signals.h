/** The internal signals of the design, the crossbar that routes them, and their last edges. */
#ifndef STATION_SIGNALS_SIGNALS_H
#define STATION_SIGNALS_SIGNALS_H

#include "station/signals/Tick.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace station {

/** By the number with which the design selects them. The missing numbers are always low. */
enum Signal : std::uint8_t {
    lowSignal = 0,
    exsync = 1,
    exsync2 = 2,
    flash = 3,
    lineValid = 4,
    frameValid = 5,
    firstInput = 21, // eight inputs, then four front ones
    lineStart = 33,  // the last four are high for one tick
    lineEnd = 34,
    frameStart = 35,
    frameEnd = 36,
    signalCount = 37
};

struct Edge {
    Tick tick;
    bool level; // from this tick on
};

/** The history of a signal in a span of time. */
struct Trace {
    bool level = false;   // at the beginning
    bool complete = true; // false: the station no longer has the edges at the beginning
    std::vector<Edge> edges{};
};

/** A selected signal, inverted or not. */
struct Route {
    std::uint8_t select = 0;
    bool invert = false;
    bool operator==(const Route&) const = default;
};

/** The users of signals that are routed by the crossbar while time advances. */
enum class Tap : std::uint8_t {
    analyzer0,
    analyzer1,
    customEvent0,
    customEvent1,
    cameraTrigger,
    cameraRelease
};
inline constexpr std::size_t tapCount = 6; // the last one rises when the camera trigger falls

/** Receives rising edges after the crossbar. */
class TapHandler {
public:
    virtual void rises(Tap tap, Tick tick) = 0;

protected:
    ~TapHandler() = default;
};

/** The last edges of one signal, at most `capacity`. */
class History {
public:
    static constexpr std::size_t capacity = 16384;

    void add(Tick tick, bool level) {
        if (m_edges.empty()) m_edges.resize(capacity);
        m_edges[m_count++ % capacity] = tick << 1 | Tick{level};
    }
    /** Edges from the tick `from` to the tick `to`, both included. `rest`: the level if there is no edge. */
    Trace trace(Tick from, Tick to, bool rest) const;

private:
    Edge at(std::uint64_t number) const;

    std::vector<Tick> m_edges; // tick * 2 + level
    std::uint64_t m_count = 0; // number of all edges so far
};

class Signals {
public:
    explicit Signals(TapHandler& handler) : m_handler(handler) {}

    bool level(std::uint8_t signal) const { return signal < signalCount && m_levels[signal]; }
    /** The level after the crossbar. */
    bool level(Route route) const { return level(route.select) != route.invert; }

    /** A level before time first advances: not an edge. */
    void preset(std::uint8_t signal, bool level) { m_levels[signal] = m_rest[signal] = level; }
    void set(std::uint8_t signal, bool level, Tick tick) {
        if (m_levels[signal] == level) return;
        m_levels[signal] = level;
        m_history[signal].add(tick, level);
        if (m_taps[signal] != 0) notify(signal, level, tick);
    }
    /** Makes a signal high for one tick. LVAL and FVAL determine the edges of lineStart and its like. */
    void pulse(std::uint8_t signal, Tick tick) {
        if (m_taps[signal] != 0) beginPulse(signal, tick);
    }
    /** When the pulses end; never if there are none. */
    Tick pulseEnd() const { return m_pulseEnd; }
    void endPulses(Tick tick);

    /** Connects a tap to another signal. A level that rises by this counts as an edge, unless `silently`. */
    void route(Tap tap, Route route, Tick tick, bool silently);

    Trace trace(Route route, Tick from, Tick to) const;

private:
    void notify(std::uint8_t signal, bool level, Tick tick);
    void beginPulse(std::uint8_t signal, Tick tick);
    Trace pulses(std::uint8_t of, bool level, Tick from, Tick to) const;

    TapHandler& m_handler;
    std::array<bool, signalCount> m_levels{};
    std::array<bool, signalCount> m_rest{};
    std::array<std::uint8_t, signalCount> m_taps{}; // mask of the taps connected to each signal
    std::array<Route, tapCount> m_routes{};
    std::array<History, signalCount> m_history;
    std::uint64_t m_pulses = 0; // mask of the signals that are high for this tick
    Tick m_pulseEnd = never;
};

} // namespace station

#endif
