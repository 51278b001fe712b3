/** What is connected to an input of the board: levels over time. */
#ifndef STATION_TIMING_WAVE_H
#define STATION_TIMING_WAVE_H

#include "station/timing/Signals.h"
#include "station/timing/Tick.h"

#include <cstdint>
#include <vector>

namespace station {

/** A piece of a movement. Speeds are negative backwards; what they count, and how fast is the fastest, is the user's. */
struct SpeedPiece {
    Tick ticks = 0; // at most 2^40
    std::int32_t from = 0;
    std::int32_t to = 0; // changes evenly
};

/** A wave for one input, or of an encoder for two. Limits are kept by clamping. */
class Wave {
public:
    /** A level that stays. */
    static Wave constant(bool level);
    /** Rises at `rise` and every `period` ticks after it, and falls `high` ticks later. Low for ever if period or high
     *  are 0; high for ever if it does not fall within a period. */
    static Wave square(Tick rise, Tick period, Tick high);
    /** A level and its edges. An edge that is not later than the one before takes its place. */
    static Wave edges(bool level, const std::vector<Edge>& edges);
    /** Two tracks, A and B, of an encoder that rests in the middle between two edges and moves from `start` on. After
     *  the last piece its speed stays. Speeds are quarter steps a second. */
    static Wave encoder(Tick start, const std::vector<SpeedPiece>& pieces);
    /** The same of an encoder on a belt: speeds are micrometres a second, and a quarter step is so many nanometres. */
    static Wave beltEncoder(Tick start, const std::vector<SpeedPiece>& pieces, std::uint32_t step);
    static constexpr std::int32_t fastestEncoder = 10'000'000; // quarter steps a second
    static constexpr std::int32_t fastestBelt = 100'000'000;   // micrometres a second
    /** The pieces without those of no time, within the limits, and a last one that stays for ever: its time is 0. */
    static std::vector<SpeedPiece> limited(std::vector<SpeedPiece> pieces, std::int32_t fastest);

    /** Leaves out what was before `from`. An encoder moves from there on instead. */
    void begin(Tick from);
    /** Levels of track A in bit 0, of track B in bit 1. */
    unsigned levels() const { return m_levels; }
    bool hasTwoTracks() const { return m_kind == Kind::encoder; }
    /** When the levels change next. */
    Tick next() const { return m_next; }
    /** Takes the change at next(), if there is one. */
    void step();

private:
    enum class Kind : std::uint8_t { constant, square, edges, encoder };
    /** What speeds count, times twice the ticks of a second, times the ticks of the piece if it is a ramp: exact. */
    __extension__ typedef __int128 Place;

    static Wave moving(Tick start, std::vector<SpeedPiece> pieces, std::int64_t unitsOfStep);
    void nextPiece();
    void findStep(Tick after);
    bool findStepWithin(Tick after, Tick end, bool isForward);
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
    SpeedPiece m_present; // 0 ticks: for ever
    std::int64_t m_unitsOfStep = 1;
    Tick m_start = 0;         // of the present piece; times below count from it
    Tick m_turn = 0;          // where it changes its direction, or its end
    std::int64_t m_place = 0; // at its start, from the step that was done last
    std::int64_t m_steps = 0; // since its start
    bool m_isStepForward = false;
    Tick m_stride = 0; // from the step before to the next
};

} // namespace station

#endif
