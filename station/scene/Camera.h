/** A line-scan camera at the port: when its lines start, and the exposure of each. Pixels are made elsewhere. */
#ifndef STATION_SCENE_CAMERA_H
#define STATION_SCENE_CAMERA_H

#include "station/scene/Belt.h"
#include "station/scene/Exposure.h"
#include "station/scene/ImageSize.h"
#include "station/signals/Tick.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace station {

class Camera {
public:
    struct Settings {
        std::uint32_t width = 2048;   // pixels per line, 1 to ImageSize::widest
        std::uint32_t lineRate = 0;   // lines per second in free run; 0: one line per camera trigger
        std::uint32_t exposure = 0;   // in ticks, unless the trigger controls the exposure
        std::uint32_t dropEvery = 0;  // every dropEvery-th trigger is ignored; 0: none is
        std::uint32_t shortEvery = 0; // every shortEvery-th line is short; 0: none is
        std::uint32_t shortWidth = 1; // pixels of a short line
        Tick lostAt = never;          // the link is lost this long after the camera was attached
        Tick lostFor = 0;             // 0: forever
    };

    /** Attaches a camera; it replaces one that is already attached. `from` is the next tick. */
    void attach(const Settings& settings, Tick from);
    void detach() { m_settings.reset(); }
    bool isAttached() const { return m_settings.has_value(); }
    /** Whether a camera is attached and its link is up. */
    bool isThere() const { return isAttached() && m_isLinked; }
    /** `isSelected`: the port is the source of lines. `isPulseWidth`: the camera exposes while its trigger is high. */
    void configure(bool isSelected, bool isPulseWidth, Tick from);
    /** Sets the belt below the camera; null: a belt at rest. */
    void setBelt(std::shared_ptr<const Belt> belt) { m_belt = std::move(belt); }

    /** A rising edge of the camera trigger. It is lost while a line is exposed or transferred. */
    void trigger(Tick tick);
    /** A falling edge of the camera trigger. */
    void release(Tick tick);
    /** When the next exposure ends, which starts the transfer of its line. */
    Tick next() const { return isThere() && m_isSelected ? m_next : never; }
    /** Starts the transfer of the next line, at the tick next(). */
    Exposure startLine(Tick tick);
    /** When the link is lost or restored next. */
    Tick nextLinkChange() const { return isAttached() ? m_linkChange : never; }
    /** Performs that change. True if it is the loss of the link. */
    bool changeLink(Tick tick);

    /** Ticks that the transfer of a line takes: the link carries 32 pixels per tick. */
    static std::uint32_t cyclesOf(std::uint32_t width) { return (width + 31) / 32; }
    std::uint64_t lostTriggers() const { return m_lostTriggers; }

private:
    bool isFreeRunning() const { return m_settings->lineRate > 0; }
    void restart(Tick from);

    std::optional<Settings> m_settings;
    std::shared_ptr<const Belt> m_belt;
    bool m_isSelected = false;
    bool m_isPulseWidth = false;
    bool m_isLinked = false;
    Tick m_linkChange = never;
    FractionClock m_clock;     // starts of exposures in free run
    Tick m_begin = 0;          // of the exposure
    bool m_isExposing = false; // until the trigger falls
    Tick m_next = never;
    Tick m_busyUntil = 0; // triggers before this tick are lost
    std::uint64_t m_triggers = 0;
    std::uint64_t m_lines = 0;
    std::uint64_t m_lostTriggers = 0;
};

} // namespace station

#endif
