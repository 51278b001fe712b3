/** Signals, lines and images of a station that runs with the present settings. */
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

/** A quantity as computed from the settings and as measured; either may be unknown. */
struct MeasuredRow {
    std::string name; /**< "ExSync period" */
    std::string unit; /**< "µs" or "Hz" */
    std::optional<double> computed, measured;
    std::optional<double> smallest, largest; /**< range of the measurements, if they vary */
};

/** One measured signal. */
struct MeasuredSignal {
    std::string name;
    bool isActiveLow;
    Waveform waveform;
};

/** A time window, relative to the start of the station. */
struct TimeWindow {
    Ticks from, to;
};

/** Reads "10ms..12ms". Throws UsageError. */
TimeWindow windowFrom(const std::string& word);

struct MeasuredTiming {
    std::vector<MeasuredRow> rows;
    /** Of the first line periods, or of the window: inputs in use, then the line trigger's. */
    std::vector<MeasuredSignal> signals;
    Ticks from = 0, to = 0; /**< the examined time span */
    std::int64_t lines = 0, pictures = 0;
    std::vector<std::string> remarks; /**< assumptions, and what did not happen */
    bool isInterrupted = false;
};

/** Connects the waves, takes three pictures within two simulated seconds, and measures. With a window, the
 *  station runs until its end if that is later; throws Failure if a signal has more edges in it than the
 *  board keeps. An external line trigger without a wave gets one of FG_LINEPERIODE / FG_LINE_DOWNSCALE. Polls
 *  `goesOn`. */
MeasuredTiming measureTiming(Instance& instance, const ParameterList& parameters,
                             const std::vector<WaveRequest>& waves, const std::function<bool()>& goesOn,
                             const std::optional<TimeWindow>& window = std::nullopt);

} // namespace applet_tools

#endif
