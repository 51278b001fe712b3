/** Why a value was refused and what to do about it, for every command that takes assignments. */
#ifndef APPLET_TOOLS_SCRATCH_REFUSAL_H
#define APPLET_TOOLS_SCRATCH_REFUSAL_H

#include "applet_tools/applet/assignments.h"
#include "applet_tools/scratch/Context.h"
#include "applet_tools/scratch/Probe.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace appletctl {

/** What was found out about a refused value. */
struct RefusalCauses {
    bool isTried = false;         /**< false for what can never be set, and for what is accepted */
    std::string limit;            /**< "the maximum is set by FG_XOFFSET (16384 with FG_XOFFSET=0)" */
    std::optional<Value> nearest; /**< of a number, the accepted one */
    std::vector<std::string> acceptedWith; /**< changes of other parameters */
};

/** Tries it on the scratch board, in the state of the probe; adds "setBy", "nearest" and "acceptedWith" to the row. */
RefusalCauses findCauses(Probe& probe, const Assignment& assignment, nlohmann::ordered_json& row);

/** The same in words: "; the maximum is set by FG_XOFFSET (...); the nearest accepted value is 64". */
std::string addSuggestion(Probe& probe, const Assignment& assignment, nlohmann::ordered_json& row);

/** The same for a refusal of the live applet. */
std::string askSuggestion(Context& context, const Assignment& assignment, nlohmann::ordered_json& row);

/** The job of a scratch board behind it: what to do about the refused {"assignment": WORD}: {"words", "row"}. */
nlohmann::json suggestionJob(ScratchSession& session, const nlohmann::json& arguments);

/** applyAssignments() on the live applet; a refusal is explained. */
Report applyLive(Context& context, const Words& words, AssignmentHooks hooks = {});

/** Carries out the "with" of a job's arguments, [NAME=VALUE, ...]; from then on that is the state to go back to.
 *  Throws Failure, with the explanation, for a refusal. */
void startFrom(ScratchSession& session, const nlohmann::json& arguments);

} // namespace appletctl

#endif
