/** Signals, lines and images of a station that runs with the present values. */
#ifndef APPLET_TOOLS_ANSWERS_MEASURED_TIMING_H
#define APPLET_TOOLS_ANSWERS_MEASURED_TIMING_H

#include "applet_tools/applet/values.h"
#include "applet_tools/station/signals.h"
#include "applet_tools/station/waves.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace applet_tools {

/** A quantity as the settings make it, and as it was; each may be unknown. */
struct MeasuredRow {
    std::string name; /**< "ExSync period" */
    std::string unit; /**< "µs" or "Hz" */
    std::optional<double> computed, measured;
    std::optional<double> smallest, largest; /**< of what was measured, where they differ */
};

/** What one signal did. */
struct MeasuredSignal {
    std::string name;
    bool isActiveLow;
    SignalCourse course;
};

struct MeasuredTiming {
    std::vector<MeasuredRow> rows;
    std::vector<MeasuredSignal>
        signals;            /**< of the first line periods: inputs in use, then the line trigger's */
    Ticks from = 0, to = 0; /**< the span of time that was looked at */
    std::int64_t lines = 0, pictures = 0;
    std::vector<std::string> remarks; /**< what was assumed, and what did not come */
    bool isInterrupted = false;
};

/** Connects the waves, takes three pictures, within two simulated seconds, and measures what there was. An external line
 *  trigger without a wave gets one of FG_LINEPERIODE / FG_LINE_DOWNSCALE. Asks `goesOn` now and then. */
MeasuredTiming measureTiming(Instance& instance, const ParameterList& parameters,
                             const std::vector<WaveRequest>& waves, const std::function<bool()>& goesOn);

} // namespace applet_tools

#endif
