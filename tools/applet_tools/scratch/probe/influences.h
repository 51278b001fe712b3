/** The effect of every parameter on every other one, measured on the scratch board. */
#ifndef APPLET_TOOLS_SCRATCH_PROBE_INFLUENCES_H
#define APPLET_TOOLS_SCRATCH_PROBE_INFLUENCES_H

#include "applet_tools/applet/ParameterState.h"
#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/ScratchSession.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace applet_tools {

struct Influence {
    std::string from, to;
    std::string what;          /**< "value", "limits", "access" or "accepted values" */
    std::string with;          /**< the first change that was seen to cause it: "FG_XOFFSET=64" */
    std::string before, after; /**< empty for accepted values */
};

struct Influences {
    std::vector<Influence> all;
    std::map<std::string, std::set<int>> codes; /**< codes of the setters' refusals, by parameter */
};

Influences askInfluences(LiveSession& live);

/** The scratch board job that measures them. */
nlohmann::json influencesJob(ScratchSession& session, const nlohmann::json& nothing);

} // namespace applet_tools

#endif
