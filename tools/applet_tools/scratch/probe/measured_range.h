/** The range that a setter accepts now, found by trying. */
#ifndef APPLET_TOOLS_SCRATCH_PROBE_MEASURED_RANGE_H
#define APPLET_TOOLS_SCRATCH_PROBE_MEASURED_RANGE_H

#include "applet_tools/scratch/probe/Probe.h"

#include <optional>

namespace applet_tools {

/** The range of accepted numbers around the present one. */
struct MeasuredRange {
    Value minimum, maximum;
    std::uint64_t step = 0; /**< for integers; 0 for others, and if no step of up to 64 is accepted */
};

/** Its ends were tried and accepted. Empty if no number that was tried is, or the target is not a number. */
std::optional<MeasuredRange> measuredRange(Probe& probe, const Target& target);

/** True if the number is between the limits: accepted, or only off the grid. For an array, in all elements of the
 *  target. */
bool isInside(Probe& probe, const Target& target, const Value& number);
/** The number of the range, with its step, that is nearest to the wanted one; it is not tried. */
Value nearestOnGrid(const MeasuredRange& range, const Value& wanted);
/** The same, tried; empty if the setter refuses it. */
std::optional<Value> nearestIn(Probe& probe, const Target& target, const MeasuredRange& range,
                               const Value& wanted);
/** The same with a new measurement; empty also if there is no range, and for elements of an array. */
std::optional<Value> nearestAccepted(Probe& probe, const Target& target, const Value& wanted);

/** An end of a range. */
enum class End { minimum, maximum };

const Value& endOf(const MeasuredRange& range, End end);
/** The first number beyond the end; empty if the type has none. */
std::optional<Value> firstBeyond(const MeasuredRange& range, End end);

} // namespace applet_tools

#endif
