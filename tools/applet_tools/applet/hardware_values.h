/** Rounding of values by the hardware, which counts in coarser steps than the parameter. */
#ifndef APPLET_TOOLS_APPLET_HARDWARE_VALUES_H
#define APPLET_TOOLS_APPLET_HARDWARE_VALUES_H

#include "applet_tools/applet/values.h"

#include <optional>
#include <string>

namespace applet_tools {

/** "the trigger counts in steps of 0.008 µs"; empty for parameters that the hardware does not round. */
std::string countingOf(const Parameter& parameter);

/** The value that the hardware uses instead of `held`; empty if it is `held` itself, or if the parameter reads
 *  back the rounded value. */
std::optional<double> nearestStep(const Parameter& parameter, const Value& held);

/** The value to request so that the parameter then reads `reading`. Rates are rounded to whole cycles and read
 *  back with half a cycle less, so a request for the reading itself would give the next cycle. */
Value requestFor(const Parameter& parameter, const Value& reading);

/** True if `loaded` is at most one cycle away from `saved`, a rate that was read: a load of a saved rate may
 *  differ that much. */
bool areNeighbours(const Parameter& parameter, const Value& saved, const Value& loaded);

/** True for a floating-point number that cannot be set now: the present mode computes it, or the board measures it. */
bool isComputedNow(const Parameter& parameter);

/** True for a number that the simulator computes from other parameters in its present mode. */
bool isComputedRate(const Parameter& parameter);

/** " (requested 33; the simulator makes 32 pixels at a time)", or the value that the hardware uses instead;
 *  empty if it uses the requested one. */
std::string requestedAndActual(const Parameter& parameter, const Value& requested, const Value& held);

} // namespace applet_tools

#endif
