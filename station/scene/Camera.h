/** A line-scan camera at the port, as far as its lines go: when they come, and what each of them is. */
#ifndef STATION_SCENE_CAMERA_H
#define STATION_SCENE_CAMERA_H

#include "station/scene/Belt.h"
#include "station/scene/Exposure.h"
#include "station/timing/Tick.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace station {

class Camera {
public:
    static constexpr std::uint32_t widest = 16384;

    struct Settings {
        std::uint32_t width = 2048;  // pixels of a line, from 1 to the widest
        std::uint32_t lineRate = 0;  // lines a second that it takes by itself; 0: one for each camera trigger
        std::uint32_t exposure = 0;  // of its own, in ticks
        std::uint32_t dropEvery = 0; // of so many triggers it takes no notice of the last one; 0: of all
        std::uint32_t shortEvery = 0; // of so many lines the last one is short; 0: none
        std::uint32_t shortWidth = 1;
        // The link is lost for a time. Counted from when the camera is attached.
        Tick lostAt = never;
        Tick lostFor = 0; // 0: for ever
    };

    /** Attaches a camera, in place of the one that was there; `from` is the next tick. */
    void attach(const Settings& settings, Tick from);
    void detach() { m_settings.reset(); }
    bool isAttached() const { return m_settings.has_value(); }
    /** Attached, with a link. */
    bool isThere() const { return isAttached() && m_isLinked; }
    /** Whether lines of the port are taken, and whether the camera exposes while its trigger is high. */
    void configure(bool isSelected, bool isPulseWidth, Tick from);
    /** What it looks at from now on; null: a belt that rests. */
    void setBelt(std::shared_ptr<const Belt> belt) { m_belt = std::move(belt); }

    /** A rising edge of the camera trigger. While a line is exposed or on its way it is lost. */
    void trigger(Tick tick);
    /** A falling one. */
    void release(Tick tick);
    /** When the next line starts on the link: its exposure ends. */
    Tick next() const { return isThere() && m_isSelected ? m_next : never; }
    /** The line that starts now. */
    Exposure startLine(Tick tick);
    /** When the link is lost or comes back. */
    Tick nextLinkChange() const { return isAttached() ? m_linkChange : never; }
    /** Takes that change. True if the link is lost by it. */
    bool changeLink(Tick tick);

    /** Ticks of a line on the link, which carries 32 pixels in one. */
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
    bool m_isExposing = false; // until its trigger falls
    Tick m_next = never;
    Tick m_busyUntil = 0; // a trigger before is lost
    std::uint64_t m_triggers = 0;
    std::uint64_t m_lines = 0;
    std::uint64_t m_lostTriggers = 0;
};

} // namespace station

#endif
