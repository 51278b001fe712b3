#include "station/scene/Camera.h"

namespace station {

void Camera::attach(const Settings& settings, Tick from) {
    m_settings = settings;
    m_settings->width = std::clamp(settings.width, 1U, ImageSize::widest);
    m_settings->shortWidth = std::clamp(settings.shortWidth, 1U, m_settings->width);
    m_isLinked = true;
    m_linkChange = later(from, settings.lostAt);
    m_triggers = m_lines = 0;
    restart(from);
}

/** Aborts the exposure. In free run the next one begins at once, or after the line in transfer. */
void Camera::restart(Tick from) {
    m_isExposing = false;
    m_next = never;
    if (!m_isSelected || !isThere() || !isFreeRunning()) return;
    m_begin = std::max(from, m_busyUntil);
    const std::uint64_t shortest = std::uint64_t{m_settings->exposure} + cyclesOf(m_settings->width);
    if (shortest * m_settings->lineRate > ticksPerSecond)
        m_clock.start(m_begin, shortest, 1);
    else
        m_clock.start(m_begin, ticksPerSecond, m_settings->lineRate);
    m_next = later(m_begin, m_settings->exposure);
}

void Camera::configure(bool isSelected, bool isPulseWidth, Tick from) {
    m_isPulseWidth = isPulseWidth;
    if (isSelected == std::exchange(m_isSelected, isSelected) || !isAttached()) return;
    restart(from);
}

void Camera::trigger(Tick tick) {
    if (!m_isSelected || !isThere() || isFreeRunning()) return;
    if (m_isExposing || m_next != never || tick < m_busyUntil) {
        ++m_lostTriggers;
        return;
    }
    ++m_triggers;
    if (m_settings->dropEvery > 0 && m_triggers % m_settings->dropEvery == 0) {
        ++m_droppedTriggers;
        return;
    }
    m_begin = tick;
    if (m_isPulseWidth)
        m_isExposing = true;
    else
        m_next = later(tick, m_settings->exposure);
}

void Camera::release(Tick tick) {
    if (std::exchange(m_isExposing, false)) m_next = tick;
}

Exposure Camera::startLine(Tick tick) {
    ++m_lines;
    const bool isShort = m_settings->shortEvery > 0 && m_lines % m_settings->shortEvery == 0;
    constexpr Tick longest = 0xffff'ffff;
    const Exposure line{.position = m_belt != nullptr ? m_belt->position(m_begin) : 0,
                        .number = m_lines,
                        .ticks = static_cast<std::uint32_t>(std::min(tick - m_begin, longest)),
                        .width = isShort ? m_settings->shortWidth : m_settings->width};
    m_busyUntil = later(tick, cyclesOf(line.width));
    m_next = never;
    if (isFreeRunning()) {
        m_clock.step();
        m_begin = m_clock.tick();
        m_next = later(m_begin, m_settings->exposure);
    }
    return line;
}

bool Camera::changeLink(Tick tick) {
    m_isLinked = !m_isLinked;
    m_linkChange = !m_isLinked && m_settings->lostFor > 0 ? later(tick, m_settings->lostFor) : never;
    restart(tick);
    return !m_isLinked;
}

} // namespace station
