/** Waves for the inputs of the board: levels over time. */
#ifndef STATION_SIGNALS_WAVE_H
#define STATION_SIGNALS_WAVE_H

#include "station/signals/Signals.h"
#include "station/signals/Tick.h"

#include <cstdint>
#include <vector>

namespace station {

/** A piece of a movement. Speeds are negative backwards; the user defines their unit and their limit. */
struct SpeedPiece {
    Tick ticks = 0; // at most Wave::longestPiece
    std::int32_t from = 0;
    std::int32_t to = 0; // changes linearly
};

/** A wave for one input, or for two in the case of an encoder. Arguments are clamped to their limits. */
class Wave {
public:
    /** A constant level. */
    static Wave constant(bool level);
    /** Rises at `rise` and every `period` ticks after it, and falls `high` ticks later. Always low if one of
     *  these two is 0; always high if it does not fall within a period. */
    static Wave square(Tick rise, Tick period, Tick high);
    /** A level and its edges. An edge that is not later than the previous one replaces it. */
    static Wave edges(bool level, const std::vector<Edge>& edges);
    /** Two tracks, A and B, of an encoder that starts midway between two edges and moves from `start` on. It
     *  keeps the speed of the last piece. Speeds are quarter steps per second. */
    static Wave encoder(Tick start, const std::vector<SpeedPiece>& pieces);
    /** The same on a belt: speeds are micrometres per second, and a quarter step is `step` nanometres. */
    static Wave beltEncoder(Tick start, const std::vector<SpeedPiece>& pieces, std::uint32_t step);
    static constexpr std::int32_t fastestEncoder = 10'000'000; // quarter steps per second
    static constexpr std::int32_t fastestBelt = 100'000'000;   // micrometres per second
    static constexpr Tick longestPiece = Tick{1} << 40;
    /** True if no speed is above `fastest`, in either direction, and no piece too long. */
    static bool areWithin(const std::vector<SpeedPiece>& pieces, std::int32_t fastest);
    /** The pieces without empty ones, within the limits, and then the speed of the last one without end: its time is 0. */
    static std::vector<SpeedPiece> endless(std::vector<SpeedPiece> pieces, std::int32_t fastest);

    /** Skips everything before `from`. An encoder starts to move there instead. */
    void begin(Tick from);
    /** The same wave earlier by these ticks. It must have begun, and not before that tick. */
    Wave earlier(Tick ticks) const;
    /** Levels of track A in bit 0, of track B in bit 1. */
    unsigned levels() const { return m_levels; }
    bool hasTwoTracks() const { return m_kind == Kind::encoder; }
    /** When the levels change next. */
    Tick next() const { return m_next; }
    /** Performs the change at next(), if there is one. */
    void step();

private:
    enum class Kind : std::uint8_t { constant, square, edges, encoder };
    /** For positions in units of speed, times twice the ticks of a second, times the ticks of the piece if a ramp:
     *  exact. */
    __extension__ typedef __int128 SignedWide;

    static Wave moving(Tick start, std::vector<SpeedPiece> pieces, std::int64_t unitsOfStep);
    void nextPiece();
    void findStep(Tick after);
    bool findStepWithin(Tick after, Tick end, bool isForward);
    Tick stepAtConstantSpeed(Tick end, bool isForward) const;
    Tick stepOnRamp(Tick after, Tick end, bool isForward) const;
    bool isStepDone(Tick ticks, bool isForward) const;

    Kind m_kind = Kind::constant;
    unsigned m_levels = 0;
    Tick m_next = never;
    // Square.
    Tick m_period = 0;
    Tick m_high = 0;
    // Edges.
    std::vector<Edge> m_edges;
    std::size_t m_edge = 0;
    // Encoder.
    std::vector<SpeedPiece> m_pieces; // those to come
    std::size_t m_piece = 0;
    SpeedPiece m_present; // 0 ticks: without end
    std::int64_t m_unitsOfStep = 1;
    Tick m_start = 0;            // of the current piece; times below count from it
    Tick m_turn = 0;             // where it reverses its direction, or its end
    std::int64_t m_position = 0; // at its start, relative to the last step
    std::int64_t m_steps = 0;    // since its start
    bool m_isStepForward = false;
    Tick m_stride = 0; // from the previous step to the next
};

} // namespace station

#endif
