#include "station/scene/Belt.h"

#include <algorithm>

namespace station {
namespace {

constexpr std::int64_t unitsOfNanometre = 2 * static_cast<std::int64_t>(ticksPerSecond) / 1000;
constexpr std::int64_t farthest = std::int64_t{1} << 62; // nanometres

/** The first tick after `low` for which the condition holds. It must hold for `high`. */
template <typename Condition> Tick firstTick(Tick low, Tick high, Condition holds) {
    while (high - low > 1) {
        const Tick middle = low + (high - low) / 2;
        (holds(middle) ? high : low) = middle;
    }
    return high;
}

} // namespace

std::vector<BeltObject> mergedObjects(std::vector<BeltObject> objects) {
    std::erase_if(objects, [](const BeltObject& object) { return object.length <= 0; });
    std::ranges::sort(objects, {}, &BeltObject::position);
    std::vector<BeltObject> merged;
    for (const BeltObject& object : objects) {
        if (merged.empty() || merged.back().position + merged.back().length < object.position) {
            merged.push_back(object);
            continue;
        }
        const std::int64_t end = object.position + object.length;
        merged.back().length = std::max(merged.back().length, end - merged.back().position);
    }
    return merged;
}

Belt::Belt(Tick start, const std::vector<SpeedPiece>& pieces) : m_start(start) {
    Tick begin = 0;
    SignedWide position = 0;
    for (const SpeedPiece& piece : Wave::endless(pieces, Wave::fastestBelt)) {
        m_pieces.push_back({begin, position, piece});
        begin += piece.ticks;
        position += (SignedWide{piece.from} + piece.to) * static_cast<SignedWide>(piece.ticks);
    }
    if (m_pieces.empty()) m_pieces.push_back({0, 0, {}});
}

std::int64_t Belt::position(Tick tick) const {
    const Tick time = tick > m_start ? tick - m_start : 0;
    const auto next = std::ranges::upper_bound(m_pieces, time, {}, &Piece::begin);
    const Piece& piece = *(next - 1);
    const auto past = static_cast<SignedWide>(time - piece.begin);
    const SignedWide length = piece.speed.ticks > 0 ? static_cast<SignedWide>(piece.speed.ticks) : 1;
    const SignedWide ramp = SignedWide{piece.speed.to} - piece.speed.from;
    const SignedWide position =
        (piece.position + 2 * SignedWide{piece.speed.from} * past) * length + ramp * past * past;
    const SignedWide unit = length * unitsOfNanometre;
    const SignedWide rounded = position / unit - (position % unit < 0 ? 1 : 0);
    return static_cast<std::int64_t>(std::clamp(rounded, -SignedWide{farthest}, SignedWide{farthest}));
}

std::vector<Belt::Stretch> Belt::stretches() const {
    std::vector<Stretch> stretches;
    for (const Piece& piece : m_pieces) {
        const Tick begin = m_start + piece.begin;
        const Tick end = piece.speed.ticks > 0 ? begin + piece.speed.ticks : lastTick;
        const std::int64_t from = piece.speed.from;
        const std::int64_t to = piece.speed.to;
        Tick turn = begin;
        if ((from < 0) != (to < 0) && from != 0 && to != 0) {
            const auto speed = static_cast<std::uint64_t>(std::abs(from));
            const auto change = static_cast<std::uint64_t>(std::abs(to - from));
            turn += static_cast<Tick>(Wide{piece.speed.ticks} * speed / change);
            stretches.push_back({begin, turn});
        }
        stretches.push_back({turn, end});
    }
    return stretches;
}

std::vector<Edge> Belt::barrier(const std::vector<BeltObject>& objects, std::int64_t ahead) const {
    std::vector<std::int64_t> borders; // positions of the belt at which the level changes, initially low
    for (const BeltObject& object : mergedObjects(objects)) {
        borders.push_back(object.position - ahead);
        borders.push_back(object.position + object.length - ahead);
    }
    const auto passed = [&](std::int64_t position) {
        return std::ranges::upper_bound(borders, position) - borders.begin();
    };
    std::vector<Edge> edges;
    if (passed(0) % 2 != 0) edges.push_back({m_start, true});
    for (const Stretch& stretch : stretches()) {
        const auto first = passed(position(stretch.begin));
        const auto last = passed(position(stretch.end));
        for (auto border = first; border < last && edges.size() < mostEdges; ++border) {
            const std::int64_t goal = borders[static_cast<std::size_t>(border)];
            const auto isThere = [&](Tick tick) { return position(tick) >= goal; };
            edges.push_back({firstTick(stretch.begin, stretch.end, isThere), border % 2 == 0});
        }
        for (auto border = first; border > last && edges.size() < mostEdges; --border) {
            const std::int64_t goal = borders[static_cast<std::size_t>(border - 1)];
            const auto isThere = [&](Tick tick) { return position(tick) < goal; };
            edges.push_back({firstTick(stretch.begin, stretch.end, isThere), border % 2 == 0});
        }
    }
    return edges;
}

} // namespace station
