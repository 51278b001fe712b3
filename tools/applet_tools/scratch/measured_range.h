/** What a setter accepts now, found by asking it. */
#ifndef APPLET_TOOLS_SCRATCH_MEASURED_RANGE_H
#define APPLET_TOOLS_SCRATCH_MEASURED_RANGE_H

#include "applet_tools/scratch/Probe.h"

#include <optional>

namespace applet_tools {

/** The numbers around the present one that a setter takes. */
struct MeasuredRange {
    Value minimum, maximum;
    std::uint64_t step = 0; /**< of whole numbers; 0 for others */
};

/** Nothing where the setter takes no number at all, or the target is none. */
std::optional<MeasuredRange> measuredRange(Probe& probe, const Target& target);

/** Of a number the accepted one that is nearest to the wanted one. */
Value nearestIn(const MeasuredRange& range, const Value& wanted);
/** The same, measured now; nothing where the setter takes no number or the target is none. */
std::optional<Value> nearestAccepted(Probe& probe, const Target& target, const Value& wanted);

/** Which end of a range. */
enum class End { minimum, maximum };

const Value& endOf(const MeasuredRange& range, End end);
/** The first number that lies behind the end; nothing where the type has none. */
std::optional<Value> firstBehind(const MeasuredRange& range, End end);

} // namespace applet_tools

#endif
