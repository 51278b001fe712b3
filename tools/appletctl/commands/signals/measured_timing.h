/** The additions of "timing --measured": the station's own timing next to the computed one. */
#ifndef APPLETCTL_COMMANDS_SIGNALS_MEASURED_TIMING_H
#define APPLETCTL_COMMANDS_SIGNALS_MEASURED_TIMING_H

#include "applet_tools/answers/measured_timing.h"
#include "applet_tools/station/waves.h"
#include "appletctl/base/Report.h"
#include "appletctl/commands/Context.h"
#include "appletctl/draw/waves.h"

#include <optional>
#include <vector>

namespace appletctl {

/** The measured signals to draw: the window, or some line periods, starting one before the first ExSync. */
struct MeasuredDrawing {
    std::vector<Wave> waves;
    double period = 0, end = 0;
    double origin = 0; /**< the station's time at the left end */
};

/** Runs a station with the present values, on a copy of the board if its time has already advanced, and adds a
 *  table and a document. */
MeasuredDrawing addMeasuredTiming(Report& report, Context& context, const std::vector<WaveRequest>& waves,
                                  const std::optional<TimeWindow>& window);

} // namespace appletctl

#endif
