#include "station/signals/Wave.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace station {
namespace {

constexpr std::int64_t unitsOfOne = 2 * static_cast<std::int64_t>(ticksPerSecond); // units of speed

/** Track A is high after the first and second quarter of a period, B after the second and third. */
unsigned tracks(std::int64_t step) {
    constexpr unsigned levels[] = {0, 1, 3, 2};
    return levels[static_cast<std::uint64_t>(step) % 4];
}

} // namespace

Wave Wave::constant(bool level) {
    Wave wave;
    wave.m_levels = level ? 1 : 0;
    return wave;
}

Wave Wave::square(Tick rise, Tick period, Tick high) {
    if (period == 0 || high == 0) return constant(false);
    if (high >= period) return constant(true);
    Wave wave;
    wave.m_kind = Kind::square;
    wave.m_next = rise;
    wave.m_period = period;
    wave.m_high = high;
    return wave;
}

Wave Wave::edges(bool level, const std::vector<Edge>& edges) {
    Wave wave = constant(level);
    wave.m_kind = Kind::edges;
    for (const Edge& edge : edges) {
        const Tick tick = std::min(edge.tick, lastTick);
        while (!wave.m_edges.empty() && wave.m_edges.back().tick >= tick)
            wave.m_edges.pop_back();
        wave.m_edges.push_back({tick, edge.level});
    }
    if (!wave.m_edges.empty()) wave.m_next = wave.m_edges.front().tick;
    return wave;
}

bool Wave::areWithin(const std::vector<SpeedPiece>& pieces, std::int32_t fastest) {
    return std::ranges::all_of(pieces, [&](const SpeedPiece& piece) {
        return piece.ticks <= longestPiece && std::max(piece.from, piece.to) <= fastest &&
               std::min(piece.from, piece.to) >= -fastest;
    });
}

std::vector<SpeedPiece> Wave::endless(std::vector<SpeedPiece> pieces, std::int32_t fastest) {
    if (pieces.empty()) return pieces;
    for (SpeedPiece& piece : pieces) {
        piece.ticks = std::min(piece.ticks, longestPiece);
        piece.from = std::clamp(piece.from, -fastest, fastest);
        piece.to = std::clamp(piece.to, -fastest, fastest);
    }
    const std::int32_t last = pieces.back().to;
    std::erase_if(pieces, [](const SpeedPiece& piece) { return piece.ticks == 0; });
    pieces.push_back({0, last, last});
    return pieces;
}

Wave Wave::encoder(Tick start, const std::vector<SpeedPiece>& pieces) {
    return moving(start, endless(pieces, fastestEncoder), unitsOfOne);
}

Wave Wave::beltEncoder(Tick start, const std::vector<SpeedPiece>& pieces, std::uint32_t step) {
    constexpr std::int64_t unitsOfNanometre = unitsOfOne / 1000;
    return moving(start, endless(pieces, fastestBelt), std::max(step, 1U) * unitsOfNanometre);
}

Wave Wave::moving(Tick start, std::vector<SpeedPiece> pieces, std::int64_t unitsOfStep) {
    Wave wave;
    wave.m_kind = Kind::encoder;
    wave.m_start = std::min(start, lastTick);
    wave.m_unitsOfStep = unitsOfStep;
    wave.m_pieces = std::move(pieces);
    wave.m_position = unitsOfStep / 2;
    if (wave.m_pieces.empty()) return wave;
    wave.nextPiece();
    wave.findStep(0);
    return wave;
}

void Wave::begin(Tick from) {
    if (m_next >= from) return;
    if (m_kind == Kind::encoder) {
        const Tick ahead = m_next - m_start;
        m_start = std::max(m_start, from);
        m_next = later(m_start, ahead);
        return;
    }
    if (m_kind == Kind::square)
        m_next += (from - m_next) / m_period * m_period; // a rise, at or before `from`
    while (m_next < from)
        step();
}

Wave Wave::earlier(Tick ticks) const {
    Wave wave = *this;
    const auto move = [ticks](Tick& tick) {
        if (tick != never) tick -= std::min(tick, ticks);
    };
    move(wave.m_next);
    move(wave.m_start);
    for (Edge& edge : wave.m_edges)
        move(edge.tick);
    return wave;
}

void Wave::step() {
    if (m_next == never) return;
    switch (m_kind) {
    case Kind::constant:
        break;
    case Kind::square:
        m_levels ^= 1U;
        m_next = later(m_next, m_levels != 0 ? m_high : m_period - m_high);
        break;
    case Kind::edges:
        m_levels = m_edges[m_edge].level ? 1 : 0;
        m_next = ++m_edge < m_edges.size() ? m_edges[m_edge].tick : never;
        break;
    case Kind::encoder:
        m_steps += m_isStepForward ? 1 : -1;
        m_levels = tracks((m_levels == 3 ? 2 : m_levels == 2 ? 3 : m_levels) + (m_isStepForward ? 1 : 3));
        findStep(m_next - m_start);
        break;
    }
}

void Wave::nextPiece() {
    const SpeedPiece past = m_present;
    const SignedWide way = (SignedWide{past.from} + past.to) * static_cast<SignedWide>(past.ticks);
    m_position = static_cast<std::int64_t>(m_position + way - SignedWide{m_steps} * m_unitsOfStep);
    m_steps = 0;
    m_start = later(m_start, past.ticks);
    m_present = m_pieces[m_piece++];
    const std::int64_t from = m_present.from;
    const std::int64_t to = m_present.to;
    m_turn = m_present.ticks > 0 ? m_present.ticks : never;
    if ((from < 0 && to > 0) || (from > 0 && to < 0)) {
        const auto speed = static_cast<std::uint64_t>(from < 0 ? -from : from);
        const auto change = static_cast<std::uint64_t>(from < 0 ? to - from : from - to);
        m_turn = static_cast<Tick>(Wide{m_present.ticks} * speed / change);
    }
}

/** Whether the next step in this direction is complete at `ticks` after the start of the piece. */
bool Wave::isStepDone(Tick ticks, bool isForward) const {
    const SignedWide time = static_cast<SignedWide>(ticks);
    const SignedWide length = m_present.ticks > 0 ? static_cast<SignedWide>(m_present.ticks) : 1;
    const SignedWide from = m_present.from;
    const SignedWide ramp = m_present.to - from;
    const SignedWide position = (m_position + 2 * from * time) * length + ramp * time * time;
    const SignedWide goal = (SignedWide{m_steps} + (isForward ? 1 : 0)) * m_unitsOfStep * length;
    return isForward ? position >= goal : position <= goal;
}

/** When the next step is complete, at most `end`; never if later. */
Tick Wave::stepAtConstantSpeed(Tick end, bool isForward) const {
    if (m_present.from == 0) return never;
    const SignedWide goal = (SignedWide{m_steps} + (isForward ? 1 : 0)) * m_unitsOfStep;
    const SignedWide way = isForward ? goal - m_position : m_position - goal;
    if (way <= 0) return 0;
    const auto speed =
        static_cast<std::uint64_t>(2 * std::int64_t{isForward ? m_present.from : -m_present.from});
    // Distance over speed, rounded up. A division of 64 bits is much faster than one of 128.
    const SignedWide time =
        way <= SignedWide{INT64_MAX}
            ? static_cast<SignedWide>((static_cast<std::uint64_t>(way) + speed - 1) / speed)
            : (way + static_cast<SignedWide>(speed) - 1) / static_cast<SignedWide>(speed);
    return time > static_cast<SignedWide>(end) ? never : static_cast<Tick>(time);
}

/** The same while the speed changes, by a search that begins at `after`. */
Tick Wave::stepOnRamp(Tick after, Tick end, bool isForward) const {
    if (!isStepDone(end, isForward)) return never;
    Tick low = after; // not reached yet, or not tested
    Tick high = end;  // reached
    // Speeds change little from step to step, so first try nearly the length of the previous one.
    if (m_stride > 2 && m_stride - 2 < end - low && !isStepDone(low + m_stride - 2, isForward))
        low += m_stride - 2;
    // Then gallop: double the stride until the step is done.
    for (Tick stride = 1; stride < end - low; stride *= 2) {
        if (isStepDone(low + stride, isForward)) {
            high = low + stride;
            break;
        }
        low += stride;
    }
    while (high - low > 1) { // then bisect
        const Tick middle = low + (high - low) / 2;
        (isStepDone(middle, isForward) ? high : low) = middle;
    }
    return high;
}

/** Searches for the next step after `after` in a stretch without a turn that ends at `end`. */
bool Wave::findStepWithin(Tick after, Tick end, bool isForward) {
    if (after >= end) return false;
    const bool isConstant = m_present.from == m_present.to;
    const Tick found = isConstant ? stepAtConstantSpeed(end, isForward) : stepOnRamp(after, end, isForward);
    if (found == never) return false;
    const Tick step = std::max(found, after + 1);
    m_isStepForward = isForward;
    m_stride = step - after;
    m_next = later(m_start, step);
    return true;
}

void Wave::findStep(Tick after) {
    while (true) {
        const bool isForward = m_present.from > 0 || (m_present.from == 0 && m_present.to > 0);
        const Tick end = m_present.ticks > 0 ? m_present.ticks : lastTick;
        if (findStepWithin(after, std::min(m_turn, end), isForward)) return;
        if (m_turn < end && findStepWithin(std::max(after, m_turn), end, !isForward)) return;
        if (m_present.ticks == 0) break;
        nextPiece();
        after = 0;
    }
    m_next = never;
}

} // namespace station
