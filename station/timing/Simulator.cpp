#include "station/timing/Simulator.h"

#include <algorithm>

namespace station {

void Simulator::configure(const Settings& settings, Tick from) {
    if (settings == m_settings) return;
    const bool wasRunning = m_settings.isSource && m_settings.isFreeRunning;
    const bool isRunning = settings.isSource && settings.isFreeRunning;
    const bool isSameTrigger = settings.isSource && m_settings.isSource && !settings.isFreeRunning &&
                               !m_settings.isFreeRunning &&
                               settings.isFrameTriggered == m_settings.isFrameTriggered;
    if (isRunning && !wasRunning) m_next = std::max(from, m_busyUntil);
    if (!isRunning && !isSameTrigger) m_next = never;
    if (settings.isSource && !m_settings.isSource) nextFrame();
    m_settings = settings;
    if (m_y >= m_settings.activeLines) nextFrame();
    if (m_settings.activeLines == 0) m_next = never;
    if (isRunning && m_next == never && m_settings.activeLines > 0) m_next = std::max(from, m_busyUntil);
    m_clock.start(m_next, m_settings.periodNumerator, m_settings.periodDenominator);
}

void Simulator::nextFrame() {
    if (m_y == 0) return;
    m_y = 0;
    ++m_frame;
}

void Simulator::trigger(Tick tick) {
    if (!m_settings.isSource || m_settings.isFreeRunning || m_settings.activeLines == 0) return;
    if (tick < m_busyUntil || m_next != never) {
        ++m_lostTriggers;
        return;
    }
    if (m_settings.isFrameTriggered) nextFrame();
    m_next = tick;
    m_clock.start(tick, m_settings.periodNumerator, m_settings.periodDenominator);
}

SourceLine Simulator::startLine() {
    const bool isLast = m_y + 1 >= m_settings.activeLines;
    const SourceLine line{.frame = m_frame,
                          .y = m_y,
                          .height = m_settings.activeLines,
                          .cycles = m_settings.activeCycles,
                          .isFirst = m_y == 0,
                          .isLast = isLast};
    m_busyUntil = later(m_next, m_settings.cycles);
    ++m_y;
    if (isLast) nextFrame();
    const bool isSingleLine = !m_settings.isFreeRunning && !m_settings.isFrameTriggered;
    if (isSingleLine) {
        m_next = never;
        return line;
    }
    if (isLast)
        m_clock.skip(std::uint64_t{m_settings.lines} - m_settings.activeLines + 1);
    else
        m_clock.step();
    m_next = m_clock.tick();
    if (isLast && m_settings.isFrameTriggered && !m_settings.isFreeRunning) {
        m_busyUntil = std::max(m_busyUntil, m_next);
        m_next = never;
    }
    return line;
}

} // namespace station
