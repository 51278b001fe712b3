#include "applet_tools/scratch/probe/measured_range.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <limits>

namespace applet_tools {
namespace {

constexpr std::uint64_t widestStep = 64; // of an integer's grid

/** The answer to a number; for an array, to the number in all elements of the target. */
int answerTo(Probe& probe, const Target& target, const Value& number) {
    if (!target.elements) return probe.answer(target, number);
    return probe.answer(target, Elements(target.elements->count(), std::get<std::uint32_t>(number)));
}

/** Tests the numbers of a target. */
class Asked {
public:
    Asked(Probe& probe, const Target& target) : m_probe(probe), m_target(target) {}

    bool takes(const Value& number) { return answerTo(m_probe, m_target, number) == FG_OK; }
    bool isInside(const Value& number) { return applet_tools::isInside(m_probe, m_target, number); }

private:
    Probe& m_probe;
    Target m_target;
};

/** The smallest or the largest number of the type. */
Value extremeOf(const Value& like, End end) {
    return std::visit(
        [&](const auto& native) -> Value {
            using T = std::decay_t<decltype(native)>;
            if constexpr (std::is_arithmetic_v<T>)
                return end == End::maximum ? std::numeric_limits<T>::max() : std::numeric_limits<T>::lowest();
            else
                return native;
        },
        like);
}

/** The last number inside the range, searched from `inside` to the end of the type. */
Value borderOf(Asked& asked, const Value& inside, End end) {
    Value extreme = extremeOf(inside, end);
    if (asked.isInside(extreme)) return extreme;
    std::uint64_t in = rankOf(inside), out = rankOf(extreme);
    while ((in > out ? in - out : out - in) > 1) {
        const std::uint64_t middle = in < out ? in + (out - in) / 2 : out + (in - out) / 2;
        (asked.isInside(numberAt(middle, inside)) ? in : out) = middle;
    }
    return numberAt(in, inside);
}

/** The first accepted number from a border on the way to the other one; empty if none is accepted within the widest
 *  step. */
std::optional<Value> onGrid(Asked& asked, const Value& border, const Value& other) {
    const std::uint64_t from = rankOf(border), to = rankOf(other);
    const std::uint64_t last = std::min(from < to ? to - from : from - to, widestStep - 1);
    for (std::uint64_t steps = 0; steps <= last; ++steps) {
        Value number = numberAt(from < to ? from + steps : from - steps, border);
        if (asked.takes(number)) return number;
    }
    return std::nullopt;
}

/** A negative zero is a number of its own for a search, and the same one for a person. */
Value withoutNegativeZero(const Value& number) {
    const auto* zero = std::get_if<double>(&number);
    return zero != nullptr && *zero == 0 ? 0.0 : number;
}

/** 0 for numbers without a grid, and where no number follows the minimum within the widest step. */
std::uint64_t stepAbove(Asked& asked, const Value& minimum) {
    if (std::holds_alternative<double>(minimum)) return 0;
    for (std::uint64_t step = 1; step <= widestStep; ++step)
        if (asked.takes(numberAt(rankOf(minimum) + step, minimum))) return step;
    return 0;
}

/** A number between the limits: the present one, or else a published limit. */
std::optional<Value> startOf(Asked& asked, const Value& now, const std::optional<Limits>& limits) {
    if (!isUndefined(now) && asked.isInside(now)) return now;
    if (!limits || limits->minimum.index() != now.index()) return std::nullopt;
    for (const Value& limit : {limits->minimum, limits->maximum})
        if (asked.isInside(limit)) return limit;
    return std::nullopt;
}

} // namespace

std::optional<MeasuredRange> measuredRange(Probe& probe, const Target& target) {
    Value now = readValue(probe.session().instance(), target).value;
    if (const auto* elements = std::get_if<Elements>(&now)) now = std::uint32_t{elements->front()}; // a copy
    if (!isNumber(now)) return std::nullopt;
    Asked asked(probe, target);
    const auto start = startOf(asked, now, limitsOf(*target.parameter));
    if (!start) return std::nullopt;
    const Value lowBorder = borderOf(asked, *start, End::minimum);
    const Value highBorder = borderOf(asked, *start, End::maximum);
    auto low = onGrid(asked, lowBorder, highBorder), high = onGrid(asked, highBorder, lowBorder);
    if (!(low && high)) {
        const auto accepted = asked.takes(*start) ? start : low ? low : high;
        if (!accepted) return std::nullopt;
        low = low ? low : accepted;
        high = high ? high : accepted;
    }
    MeasuredRange range{.minimum = withoutNegativeZero(*low), .maximum = withoutNegativeZero(*high)};
    if (range.minimum != range.maximum) range.step = stepAbove(asked, range.minimum);
    return range;
}

bool isInside(Probe& probe, const Target& target, const Value& number) {
    const int code = answerTo(probe, target, number);
    return code == FG_OK || code == FG_ERR_GRANULARITY;
}

const Value& endOf(const MeasuredRange& range, End end) {
    return end == End::maximum ? range.maximum : range.minimum;
}

std::optional<Value> firstBeyond(const MeasuredRange& range, End end) {
    const Value& last = endOf(range, end);
    const std::uint64_t step = std::max<std::uint64_t>(range.step, 1);
    const bool isZero =
        end == End::minimum && last == Value(0.0); // the number below it is -0, which is the same
    const std::uint64_t rank = rankOf(isZero ? Value(-0.0) : last), extreme = rankOf(extremeOf(last, end));
    if ((end == End::maximum ? extreme - rank : rank - extreme) < step) return std::nullopt;
    return numberAt(end == End::maximum ? rank + step : rank - step, last);
}

Value nearestOnGrid(const MeasuredRange& range, const Value& wanted) {
    const std::uint64_t rank = rankOf(wanted), low = rankOf(range.minimum), high = rankOf(range.maximum);
    if (rank <= low) return range.minimum;
    if (rank >= high) return range.maximum;
    if (range.step <= 1) return numberAt(rank, wanted);
    const std::uint64_t below = low + (rank - low) / range.step * range.step, above = below + range.step;
    return numberAt(above <= high && above - rank < rank - below ? above : below, wanted);
}

std::optional<Value> nearestIn(Probe& probe, const Target& target, const MeasuredRange& range,
                               const Value& wanted) {
    const Value nearest = nearestOnGrid(range, wanted);
    return answerTo(probe, target, nearest) == FG_OK ? std::optional(nearest) : std::nullopt;
}

std::optional<Value> nearestAccepted(Probe& probe, const Target& target, const Value& wanted) {
    if (target.elements || target.parameter->kind() == REGISTER_KIND_ENUM || !isNumber(wanted))
        return std::nullopt;
    const auto range = measuredRange(probe, target);
    return range ? nearestIn(probe, target, *range, wanted) : std::nullopt;
}

} // namespace applet_tools
