#include "station/timing/ExSync.h"

namespace station {

void ExSync::configure(const Settings& settings, Tick from) {
    const bool wasPeriodic = !isExternal();
    const bool wasOpen = !isGated() || isGateOpen();
    const bool hasOtherDelay = settings.delay != m_settings.delay;
    m_settings = settings;
    const bool isOpen = !isGated() || isGateOpen();
    if (isExternal() || !isOpen)
        m_rise = never;
    else if (!wasPeriodic || !wasOpen || m_rise == never)
        m_rise = from;
    show(from);
    if (hasOtherDelay) { // ExSync2 takes the level that ExSync had one delay ago
        m_shown = m_pastCount - std::min<std::uint64_t>(m_pastCount, delayedCapacity);
        m_isDelayedPulse = m_shown < m_pastCount && (m_past[m_shown % delayedCapacity] & 1) == 0;
        while (m_shown < m_pastCount && later(m_past[m_shown % delayedCapacity] >> 1, settings.delay) < from)
            m_isDelayedPulse = (m_past[m_shown++ % delayedCapacity] & 1) != 0;
        findDelayed();
    }
    showDelayed(from);
}

void ExSync::show(Tick tick) {
    m_signals.set(exsync, (m_isPulse && m_settings.isEnabled) != m_settings.isInverted, tick);
}

void ExSync::showDelayed(Tick tick) {
    m_signals.set(exsync2, (m_isDelayedPulse && m_settings.isEnabled) != m_settings.isInverted, tick);
}

void ExSync::openGate(Tick tick, std::uint64_t pulses) {
    m_gate = pulses;
    if (m_settings.mode == Mode::gatedPeriodic && pulses > 0 && !m_settings.isGateOpen) m_rise = tick;
}

void ExSync::closeGate() {
    m_gate = 0;
    if (m_settings.mode == Mode::gatedPeriodic && !m_settings.isGateOpen) m_rise = never;
}

void ExSync::trigger(Tick tick) {
    if (m_isPulse)
        ++m_lostPulses;
    else
        start(tick);
}

void ExSync::start(Tick tick) {
    m_fall = later(tick, m_settings.exposure);
    if (!m_isPulse) {
        ++m_edges;
        setPulse(true, tick);
    }
    if (m_gate > 0 && --m_gate == 0) closeGate();
}

void ExSync::setPulse(bool level, Tick tick) {
    m_isPulse = level;
    show(tick);
    m_past[m_pastCount++ % delayedCapacity] = tick << 1 | Tick{level};
    if (m_delayedTick == never) findDelayed();
    if (m_delayedTick <= tick) runDelayed(tick);
}

void ExSync::findDelayed() {
    const bool hasEdge = m_shown < m_pastCount;
    m_delayedTick = hasEdge ? later(m_past[m_shown % delayedCapacity] >> 1, m_settings.delay) : never;
}

void ExSync::runDelayed(Tick tick) {
    while (m_delayedTick <= tick) {
        m_isDelayedPulse = (m_past[m_shown++ % delayedCapacity] & 1) != 0;
        findDelayed();
        showDelayed(tick);
    }
}

void ExSync::run(Tick tick) {
    if (m_rise <= tick) {
        m_rise = later(tick, m_settings.period);
        start(tick);
    }
    if (m_fall <= tick) { // after the rise, which prolongs it
        m_fall = never;
        setPulse(false, tick);
    }
    runDelayed(tick);
}

} // namespace station
