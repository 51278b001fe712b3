/** The flash output: from one rising edge of ExSync to the next, once for each start of an image. */
#ifndef STATION_TIMING_FLASH_H
#define STATION_TIMING_FLASH_H

#include "station/signals/Tick.h"

#include <cstdint>

namespace station {

class Flash {
public:
    struct Settings {
        bool isEnabled = false;
        bool isInverted = false;
        std::uint32_t delay = 0; // edges to skip first
    };

    void configure(const Settings& settings) { m_settings = settings; }
    /** An image, a trigger or a gate starts. A pending flash is dropped. */
    void start(Tick tick) {
        m_isArmed = true;
        m_passed = 0;
        if (m_lastEdge == tick) edgeOfArmed(); // the edge of this tick came first
    }
    /** A rising edge of ExSync, or the start of a line if there is no ExSync. */
    void edge(Tick tick) {
        m_lastEdge = tick;
        m_isActive = false;
        if (m_isArmed) edgeOfArmed();
    }
    bool level() const { return (m_isActive && m_settings.isEnabled) != m_settings.isInverted; }

private:
    void edgeOfArmed() {
        if (m_passed++ < m_settings.delay) return;
        m_isArmed = false;
        m_isActive = true;
    }

    Settings m_settings;
    bool m_isArmed = false;
    bool m_isActive = false;
    std::uint32_t m_passed = 0;
    Tick m_lastEdge = never;
};

} // namespace station

#endif
