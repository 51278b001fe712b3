/** The line timing of the design's camera simulator: when lines come and which they are. */
#ifndef STATION_TIMING_SIMULATOR_H
#define STATION_TIMING_SIMULATOR_H

#include "station/signals/Tick.h"

#include <cstdint>

namespace station {

/** A line of a source. */
struct SourceLine {
    std::uint32_t frame = 0;  // count since the bring-up
    std::uint32_t y = 0;      // in the frame
    std::uint32_t height = 1; // active lines of the frame
    std::uint32_t cycles = 1; // ticks of its transfer, 32 pixels each
    bool isFirst = false;     // of the frame
    bool isLast = false;
    bool isOfCamera = false; // otherwise of the simulator; for a camera, frame and height are unused
};

class Simulator {
public:
    struct Settings {
        bool isSource = false;
        bool isFreeRunning = true;
        bool isFrameTriggered = false; // else each trigger makes a line
        std::uint32_t cycles = 1;      // of a line with its gap
        std::uint32_t activeCycles = 1;
        std::uint32_t lines = 1; // of a frame with its gap
        std::uint32_t activeLines = 1;
        // From line to line, in ticks.
        std::uint64_t periodNumerator = 1;
        std::uint64_t periodDenominator = 1;
        bool operator==(const Settings&) const = default;
    };

    /** Other sizes and rates apply from the next line on; `from` is the next tick. */
    void configure(const Settings& settings, Tick from);
    /** A rising edge of the camera trigger. Starts a line or frame; lost while one is in progress. */
    void trigger(Tick tick);
    /** When the next line starts. */
    Tick next() const { return m_next; }
    /** The line that starts at next(). */
    SourceLine startLine();

    /** Camera triggers that came while a line or frame was in progress. */
    std::uint64_t lostTriggers() const { return m_lostTriggers; }

private:
    void nextFrame();

    Settings m_settings;
    FractionClock m_clock; // of the lines of a run
    Tick m_next = never;
    Tick m_busyUntil = 0; // an earlier trigger is lost
    std::uint32_t m_frame = 0;
    std::uint32_t m_y = 0;
    std::uint64_t m_lostTriggers = 0;
};

} // namespace station

#endif
