/** The generator of ExSync, and of ExSync2, its delayed copy. */
#ifndef STATION_TIMING_EX_SYNC_H
#define STATION_TIMING_EX_SYNC_H

#include "station/signals/Signals.h"
#include "station/signals/Tick.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace station {

class ExSync {
public:
    enum class Mode : std::uint8_t { periodic, external, gatedPeriodic, gatedExternal };
    struct Settings {
        Mode mode = Mode::periodic;
        Tick period = 64;
        Tick exposure = 64;
        Tick delay = 0;
        bool isEnabled = false;
        bool isInverted = false;
        bool isGateOpen = true; // always: in free run
    };

    explicit ExSync(Signals& signals) : m_signals(signals) {}

    /** Times apply from the next edge on, a mode from the next tick, `from`, on. */
    void configure(const Settings& settings, Tick from);
    /** Opens the gate for a number of pulses; 0 keeps it closed. */
    void openGate(Tick tick, std::uint64_t pulses);
    void closeGate();
    bool isGateOpen() const { return m_settings.isGateOpen || m_gate > 0; }
    bool isExternal() const {
        return m_settings.mode == Mode::external || m_settings.mode == Mode::gatedExternal;
    }
    bool isGated() const {
        return m_settings.mode == Mode::gatedPeriodic || m_settings.mode == Mode::gatedExternal;
    }
    bool isEnabled() const { return m_settings.isEnabled; }

    /** A pulse of the line trigger. Lost if the previous exposure has not ended. */
    void trigger(Tick tick);
    Tick next() const { return std::min({m_rise, m_fall, m_delayedTick}); }
    void run(Tick tick);

    /** Rising edges so far, even if the output is not enabled. */
    std::uint64_t edges() const { return m_edges; }
    std::uint64_t lostPulses() const { return m_lostPulses; }

private:
    // Twice the edges that fit into the longest delay.
    static constexpr std::size_t delayedCapacity = 8192;

    void start(Tick tick);
    void setPulse(bool level, Tick tick);
    void show(Tick tick);
    void showDelayed(Tick tick);
    void runDelayed(Tick tick);
    void findDelayed();

    Signals& m_signals;
    Settings m_settings;
    std::uint64_t m_gate = 0; // pulses that the gate will still pass
    bool m_isPulse = false;
    bool m_isDelayedPulse = false;
    Tick m_rise = never; // of the periodic generator
    Tick m_fall = never;
    // The last edges, tick * 2 + level, by their number; those from m_shown on have not reached ExSync2 yet.
    std::vector<Tick> m_past = std::vector<Tick>(delayedCapacity);
    std::uint64_t m_pastCount = 0;
    std::uint64_t m_shown = 0;
    Tick m_delayedTick = never; // tick of the next edge of ExSync2
    std::uint64_t m_edges = 0;
    std::uint64_t m_lostPulses = 0;
};

} // namespace station

#endif
