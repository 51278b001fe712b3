/** The parameters that a parameter moves and those that move it, measured on a scratch board. */
#ifndef APPLET_TOOLS_ANSWERS_DEPENDENCIES_H
#define APPLET_TOOLS_ANSWERS_DEPENDENCIES_H

#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/Probe.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace applet_tools {

/** A movement of one parameter by a change of another: the first change that was seen to cause it. */
struct Movement {
    std::string parameter; /**< the other parameter: the one that is moved, or the one that moves it */
    std::string with;      /**< "FG_XOFFSET=64" */
    Move move;
};

struct Dependencies {
    std::string parameter;
    bool isTried = false;            /**< false if there is no other value of it to try */
    std::vector<Movement> moves{};   /**< what the parameter moves */
    std::vector<Movement> movedBy{}; /**< what moves the parameter */
    Words writes{};                  /**< design parameters, in the order in which a set first wrote them */
};

/** Tries the values of all parameters in the state of the probe, and restores that state. */
Dependencies dependenciesOf(Probe& probe, const Parameter& parameter);

/** The same, starting from the live applet's state with these assignments applied. Throws UsageError for an
 *  unknown name, and the exceptions of startFrom. */
Dependencies askDependencies(LiveSession& live, const std::string& parameter, const Words& assignments);

/** {"name", "moves": [{"parameter", "with", ...}], "movedBy", "tried", "writes"}. */
nlohmann::ordered_json asJson(const Dependencies& dependencies);

/** The scratch board job that implements it: {"name": NAME, "with": [WORD, ...]}. */
json dependenciesJob(ScratchSession& session, const json& arguments);

} // namespace applet_tools

#endif
