/** What the hardware makes of a value: it counts in steps that are coarser than the parameter. */
#ifndef APPLET_TOOLS_APPLET_HARDWARE_VALUES_H
#define APPLET_TOOLS_APPLET_HARDWARE_VALUES_H

#include "applet_tools/applet/values.h"

#include <optional>
#include <string>

namespace applet_tools {

/** "the trigger counts in steps of 0.008 µs"; empty for parameters that the hardware takes as they are. */
std::string countingOf(const Parameter& parameter);

/** The value nearest to `held` that the hardware can work with; nothing where that is `held` itself, or where the
 *  parameter reads back what the hardware took. */
std::optional<double> nearestStep(const Parameter& parameter, const Value& held);

/** The value to request so that the parameter reads `reading` afterwards. Rates are rounded to whole cycles and read
 *  back with half a cycle less, so a request of the reading itself would give the next cycle. */
Value requestFor(const Parameter& parameter, const Value& reading);

/** True when `saved` is a rate that was read, and `loaded` is at most one cycle away: a load of a saved rate comes to
 *  that. */
bool areNeighbours(const Parameter& parameter, const Value& saved, const Value& loaded);

/** " (requested 33; the simulator makes 32 pixels at a time)", or which value the hardware takes in its place; empty
 *  where it takes what was requested. */
std::string requestedAndActual(const Parameter& parameter, const Value& requested, const Value& held);

} // namespace applet_tools

#endif
