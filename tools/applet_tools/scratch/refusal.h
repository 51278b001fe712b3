/** Why a value was refused and what to do about it. */
#ifndef APPLET_TOOLS_SCRATCH_REFUSAL_H
#define APPLET_TOOLS_SCRATCH_REFUSAL_H

#include "applet_tools/applet/assignments.h"
#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/Probe.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace applet_tools {

/** What was found out about a refused value. */
// The move of a JSON document checks itself. NOLINTNEXTLINE(bugprone-exception-escape)
struct RefusalCauses {
    bool isTried = false;         /**< false for what can never be set, and for what is accepted */
    std::string limit;            /**< "the maximum is set by FG_XOFFSET (16384 with FG_XOFFSET=0)" */
    nlohmann::ordered_json setBy; /**< the same as rows (see limit_causes.h); null within the range */
    std::optional<Value> nearest; /**< of a number, the accepted one */
    std::vector<std::string> acceptedWith; /**< changes of other parameters */
};

/** Tries it on the scratch board, in the state of the probe. Records of parameters from before may be gone
 *  afterwards, those of the assignment too. */
RefusalCauses findCauses(Probe& probe, const Assignment& assignment);
/** The same for several, each by itself from the state of the probe. */
std::vector<RefusalCauses> findCauses(Probe& probe, const std::vector<Assignment>& assignments);

/** Adds "acceptedWith", "setBy" and "nearest" to the row; `parameter` is the one that refused. */
void addCauses(nlohmann::ordered_json& row, const Parameter& parameter, const RefusalCauses& causes);

/** What to do about a refusal. */
struct Suggestion {
    std::string
        words; /**< "; the maximum is set by FG_XOFFSET (...); the nearest accepted value is 64", or empty */
    nlohmann::ordered_json members; /**< what addCauses adds; null where nothing was tried */
};

/** Finds one on the scratch board, as findCauses does. */
Suggestion suggestionFor(Probe& probe, const Assignment& assignment);
std::vector<Suggestion> suggestionsFor(Probe& probe, const std::vector<Assignment>& assignments);

/** The same for a refusal of the live applet with this code; empty for texts, and for a code of the board. */
Suggestion askSuggestion(LiveSession& live, const Assignment& assignment, int code);

/** The job of a scratch board behind it: what to do about the refused {"assignment": WORD}: {"words", "row"}. */
nlohmann::json suggestionJob(ScratchSession& session, const nlohmann::json& arguments);

/** Carries out the assignments on the scratch board; from then on that is the state to go back to. Throws UsageError
 *  for a word that is none and Failure, with a suggestion, for a refusal. */
void startFrom(ScratchSession& session, const Words& assignments);

} // namespace applet_tools

#endif
