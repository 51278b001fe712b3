/** The routes of signals, and the writes of the applet for the present values of parameters, observed on a scratch
 *  board. */
#ifndef APPLET_TOOLS_ANSWERS_ROUTES_H
#define APPLET_TOOLS_ANSWERS_ROUTES_H

#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/ScratchSession.h"

#include <cstdint>
#include <string>
#include <vector>

namespace applet_tools {

/** A pair of parameters that selects the signal of an output, an analyzer or an event. */
struct SignalRoute {
    std::string output; /**< "FG_TRIGGERCAMERA" of FG_TRIGGERCAMERA_SOURCE and FG_TRIGGERCAMERA_POLARITY */
    Target source;
    Target polarity;
};

/** In the order of the list. */
std::vector<SignalRoute> routesOf(const ParameterList& parameters);

/** A design parameter and the value that the applet writes to it. */
struct DesignWrite {
    std::string parameter; /**< without prefix: "Device1_..." */
    std::int64_t value;
};

/** The last write to each parameter, in the order of the first writes. */
using DesignWrites = std::vector<DesignWrite>;

/** Sets the live values of each group of parameters on a scratch board and returns the writes. Throws Failure
 *  for a value that the scratch board refuses. */
std::vector<DesignWrites> askWrites(LiveSession& live, const std::vector<std::vector<Target>>& groups);

/** The scratch board job that implements it: [[{"name", "value"}, ...], ...] gives the DesignWrites of
 *  each group. */
json routesJob(ScratchSession& session, const json& groups);

} // namespace applet_tools

#endif
