/** What "timing --measured" adds: the station's own timing beside the computed one. */
#ifndef APPLETCTL_COMMANDS_SIGNALS_MEASURED_TIMING_H
#define APPLETCTL_COMMANDS_SIGNALS_MEASURED_TIMING_H

#include "applet_tools/answers/measured_timing.h"
#include "applet_tools/station/waves.h"
#include "appletctl/base/output.h"
#include "appletctl/commands/Context.h"
#include "appletctl/draw/waves.h"

#include <optional>
#include <vector>

namespace appletctl {

/** What is drawn of it: the window, or some line periods, from one before the first ExSync on. */
struct MeasuredDrawing {
    std::vector<Wave> waves;
    double period = 0, end = 0;
    double origin = 0; /**< time of the station at the left end */
};

/** Lets a station run with the present values, on a copy of the board if that one has run before, and adds table and
 *  document. */
MeasuredDrawing addMeasuredTiming(Report& report, Context& context, const std::vector<WaveRequest>& waves,
                                  const std::optional<TimeWindow>& window);

} // namespace appletctl

#endif
