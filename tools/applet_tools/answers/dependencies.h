/** What a parameter moves and what moves it, measured on a scratch board. */
#ifndef APPLET_TOOLS_ANSWERS_DEPENDENCIES_H
#define APPLET_TOOLS_ANSWERS_DEPENDENCIES_H

#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/Probe.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace applet_tools {

/** What one change of one parameter moved of another one: the first change that was seen to do it. */
struct Movement {
    std::string parameter; /**< the other one: that is moved, or that moves */
    std::string with;      /**< "FG_XOFFSET=64" */
    Move move;
};

struct Dependencies {
    std::string parameter;
    bool isTried = false;            /**< false where no other value of it can be tried */
    std::vector<Movement> moves{};   /**< what the parameter moves */
    std::vector<Movement> movedBy{}; /**< what moves the parameter */
    Words writes{};                  /**< of the design, in the order of the first set that wrote them */
};

/** Tries the values of all parameters, in the state of the probe, to which the board is brought back. */
Dependencies dependenciesOf(Probe& probe, const Parameter& parameter);

/** The same from the state of the live applet after these assignments. Throws UsageError for an unknown name, and what
 *  startFrom throws. */
Dependencies askDependencies(LiveSession& live, const std::string& parameter, const Words& assignments);

/** {"name", "moves": [{"parameter", "with", ...}], "movedBy", "tried", "writes"}. */
nlohmann::ordered_json asJson(const Dependencies& dependencies);

/** The job of a scratch board behind it: {"name": NAME, "with": [WORD, ...]}. */
json dependenciesJob(ScratchSession& session, const json& arguments);

} // namespace applet_tools

#endif
