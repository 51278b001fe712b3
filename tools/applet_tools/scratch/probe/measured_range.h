/** The range that a setter accepts now, found by trying. */
#ifndef APPLET_TOOLS_SCRATCH_PROBE_MEASURED_RANGE_H
#define APPLET_TOOLS_SCRATCH_PROBE_MEASURED_RANGE_H

#include "applet_tools/scratch/probe/Probe.h"

#include <optional>

namespace applet_tools {

/** The range of accepted numbers around the present one. */
struct MeasuredRange {
    Value minimum, maximum;
    std::uint64_t step = 0; /**< for integers; 0 for others */
};

/** Empty if the setter accepts no number at all, or the target is not a number. */
std::optional<MeasuredRange> measuredRange(Probe& probe, const Target& target);

/** The accepted number nearest to the wanted one. */
Value nearestIn(const MeasuredRange& range, const Value& wanted);
/** The same with a new measurement; empty if the setter accepts no number or the target is not a number. */
std::optional<Value> nearestAccepted(Probe& probe, const Target& target, const Value& wanted);

/** An end of a range. */
enum class End { minimum, maximum };

const Value& endOf(const MeasuredRange& range, End end);
/** The first number beyond the end; empty if the type has none. */
std::optional<Value> firstBeyond(const MeasuredRange& range, End end);

} // namespace applet_tools

#endif
