/** The twelve inputs: connected waves, debounced levels, and the separate debouncing of the image trigger. */
#ifndef STATION_TIMING_INPUTS_H
#define STATION_TIMING_INPUTS_H

#include "station/signals/Signals.h"
#include "station/signals/Tick.h"
#include "station/signals/Wave.h"
#include "station/timing/Events.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace station {

/** A level counts after it was stable for a time, and is seen with that delay. */
class Debouncer {
public:
    bool level() const { return m_level; }
    Tick next() const { return m_due; }
    void setTime(Tick time, Tick from) {
        m_time = time;
        if (m_due != never) m_due = std::max(later(m_since, time), from);
    }
    /** The level before time first advances. */
    void preset(bool level) { m_level = level; }
    /** The raw level changes. True if the previous one was too short to count. */
    bool follow(bool level, Tick tick) {
        if (level != m_level) {
            m_since = tick;
            m_due = later(tick, m_time);
            return false;
        }
        return std::exchange(m_due, never) != never;
    }
    /** The level that is due at next() takes effect. */
    void settle() {
        m_level = !m_level;
        m_due = never;
    }

private:
    bool m_level = false;
    Tick m_time = 0;
    Tick m_since = 0;
    Tick m_due = never;
};

class Inputs {
public:
    struct Settings {
        Tick debouncing = 3;      // of all inputs
        Tick imageDebouncing = 1; // of the image trigger's input
        std::uint8_t imageInput = 0;
    };

    Inputs(Signals& signals, Events& events) : m_signals(signals), m_events(events) {}

    void configure(const Settings& settings, Tick from);
    /** Connects a wave to an input, replacing the previous one. An encoder also drives `second`, unless that
     *  is not an input or is the same. False if there is no such input. */
    bool connect(std::size_t input, const Wave& wave, Tick from, std::size_t second = inputCount);
    /** Whether the input has one. */
    bool hasWave(std::size_t input) const;
    /** The levels before time first advances count at once, as if they had always been stable. */
    void preset();

    Tick next() const { return m_next; }
    /** Processes the edges of a tick, which are simultaneous. False if no debounced level changed. */
    bool run(Tick tick);

    /** Debounced; low for an unknown input. */
    bool level(std::size_t input) const { return input < inputCount && m_debouncers[input].level(); }
    bool imageLevel() const { return m_imageDebouncer.level(); }
    /** The debounced levels as bits. */
    std::uint32_t status() const;

private:
    struct Driver {
        Wave wave;
        std::size_t second = inputCount;
        bool isConnected = false;
    };

    void drive(std::size_t input, bool level, Tick tick);
    bool settle(Tick tick);
    void findNext();

    Signals& m_signals;
    Events& m_events;
    Settings m_settings;
    std::array<Driver, inputCount> m_drivers; // by their first input
    std::array<bool, inputCount> m_raw{};
    std::array<Debouncer, inputCount> m_debouncers;
    Debouncer m_imageDebouncer;
    std::uint32_t m_used = 0; // mask of the inputs that were ever connected
    Tick m_next = never;
    Tick m_nextWave = never;
    Tick m_nextSettled = never;
};

} // namespace station

#endif
