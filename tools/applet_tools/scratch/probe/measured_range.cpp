#include "applet_tools/scratch/probe/measured_range.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <limits>

namespace applet_tools {
namespace {

constexpr std::uint64_t widestStep = 64; // of an integer's grid

/** Tests a number; for an array it sets all elements of the target to it. */
class Asked {
public:
    Asked(Probe& probe, const Target& target) : m_probe(probe), m_target(target) {}

    int answer(const Value& number) {
        if (!m_target.elements) return m_probe.answer(m_target, number);
        return m_probe.answer(m_target,
                              Elements(m_target.elements->count(), std::get<std::uint32_t>(number)));
    }
    bool takes(const Value& number) { return answer(number) == FG_OK; }
    /** Numbers off the grid are still between the limits. */
    bool isInside(const Value& number) {
        const int code = answer(number);
        return code == FG_OK || code == FG_ERR_GRANULARITY;
    }

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

/** The accepted number nearest to the border, on its inner side. */
Value onGrid(Asked& asked, const Value& border, End end) {
    for (std::uint64_t back = 0; back < widestStep; ++back) {
        const std::uint64_t rank = rankOf(border);
        Value number = numberAt(end == End::maximum ? rank - back : rank + back, border);
        if (asked.takes(number)) return number;
    }
    return border;
}

/** 0 for numbers without a grid. */
std::uint64_t stepAbove(Asked& asked, const Value& minimum) {
    if (std::holds_alternative<double>(minimum)) return 0;
    for (std::uint64_t step = 1; step <= widestStep; ++step)
        if (asked.takes(numberAt(rankOf(minimum) + step, minimum))) return step;
    return 0;
}

/** A number that the setter accepts: the present one, or else a published limit. */
std::optional<Value> startOf(Asked& asked, const Value& now, const std::optional<Limits>& limits) {
    if (asked.isInside(now)) return now;
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
    MeasuredRange range;
    range.minimum = onGrid(asked, borderOf(asked, *start, End::minimum), End::minimum);
    range.maximum = onGrid(asked, borderOf(asked, *start, End::maximum), End::maximum);
    if (range.minimum != range.maximum) range.step = stepAbove(asked, range.minimum);
    return range;
}

const Value& endOf(const MeasuredRange& range, End end) {
    return end == End::maximum ? range.maximum : range.minimum;
}

std::optional<Value> firstBeyond(const MeasuredRange& range, End end) {
    const Value& last = endOf(range, end);
    const std::uint64_t step = std::max<std::uint64_t>(range.step, 1);
    const std::uint64_t rank = rankOf(last), extreme = rankOf(extremeOf(last, end));
    if ((end == End::maximum ? extreme - rank : rank - extreme) < step) return std::nullopt;
    return numberAt(end == End::maximum ? rank + step : rank - step, last);
}

Value nearestIn(const MeasuredRange& range, const Value& wanted) {
    const auto* number = std::get_if<double>(&range.minimum);
    if (number != nullptr && *number == 0 && rankOf(wanted) <= rankOf(range.minimum)) return 0.0; // not -0
    const std::uint64_t rank = rankOf(wanted), low = rankOf(range.minimum), high = rankOf(range.maximum);
    if (rank <= low) return range.minimum;
    if (rank >= high) return range.maximum;
    if (range.step <= 1) return numberAt(rank, wanted);
    const std::uint64_t below = low + (rank - low) / range.step * range.step, above = below + range.step;
    return numberAt(above <= high && above - rank < rank - below ? above : below, wanted);
}

std::optional<Value> nearestAccepted(Probe& probe, const Target& target, const Value& wanted) {
    if (target.elements || target.parameter->kind() == REGISTER_KIND_ENUM || !isNumber(wanted))
        return std::nullopt;
    const auto range = measuredRange(probe, target);
    return range ? std::optional(nearestIn(*range, wanted)) : std::nullopt;
}

} // namespace applet_tools
