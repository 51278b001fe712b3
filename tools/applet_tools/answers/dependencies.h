/** The parameters that a parameter moves and those that move it, measured on a scratch board. */
#ifndef APPLET_TOOLS_ANSWERS_DEPENDENCIES_H
#define APPLET_TOOLS_ANSWERS_DEPENDENCIES_H

#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/probe/Probe.h"

#include <nlohmann/json.hpp>

#include <map>
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

nlohmann::ordered_json asJson(const std::vector<Movement>& movements);

/** "FG_CAMERASIMULATOR_LINERATE (10240 -> 51219)", "the limits of FG_WIDTH (4 to 1024 -> 4 to 960)". */
std::string inWords(const Movement& movement);

/** What a value of a number or an entry moves, apart from its own parameter. Tries it in the state of the probe, and
 *  restores that state. */
std::vector<Movement> movesOf(Probe& probe, const Change& change);

/** The same for the parameters of these names, each with its values in the assignments `words`: the difference to
 *  the state without them, starting from the live applet's state. */
std::map<std::string, std::vector<Movement>> askMoves(LiveSession& live, const Words& names,
                                                      const Words& words);

/** The scratch board job that implements it: {"names": [NAME, ...], "words": [WORD, ...]}. */
json movesJob(ScratchSession& session, const json& arguments);

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
