/** Why a value was refused, and suggestions. */
#ifndef APPLET_TOOLS_SCRATCH_PROBE_REFUSAL_H
#define APPLET_TOOLS_SCRATCH_PROBE_REFUSAL_H

#include "applet_tools/applet/assignments.h"
#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/probe/Probe.h"
#include "applet_tools/scratch/probe/limit_causes.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace applet_tools {

/** The causes of a refusal. */
// The move of a JSON document checks itself. NOLINTNEXTLINE(bugprone-exception-escape)
struct RefusalCauses {
    bool isTried = false;         /**< false for parameters that can never be set, and for accepted values */
    std::string limit;            /**< "the maximum is set by FG_XOFFSET (16384 with FG_XOFFSET=0)" */
    nlohmann::ordered_json setBy; /**< the same as rows (see limit_causes.h); null if within the range */
    std::optional<Value> nearest; /**< for a number, the nearest accepted one */
    std::vector<Words> ways;      /**< assignments of other parameters with which it is accepted */
};

/** Tries the assignment on the scratch board, in the state of the probe. Existing parameter records may be
 *  invalid afterwards, including that of the assignment. */
RefusalCauses findCauses(Probe& probe, const Assignment& assignment);
/** The same for several, each tried separately in the state of the probe. */
std::vector<RefusalCauses> findCauses(Probe& probe, const std::vector<Assignment>& assignments);

/** "the maximum is set by FG_XOFFSET (16384 with FG_XOFFSET=0) and FG_SENSORWIDTH (...)". */
std::string causesInWords(const Parameter& parameter, const LimitCauses& causes, End end);

/** Adds "acceptedWith", "setBy" and "nearest" to the row; `parameter` is the refused one. */
void addCauses(nlohmann::ordered_json& row, const Parameter& parameter, const RefusalCauses& causes);

/** A suggestion after a refusal. */
// The move of a JSON document checks itself. NOLINTNEXTLINE(bugprone-exception-escape)
struct Suggestion {
    Words clauses; /**< {"the maximum is set by FG_XOFFSET (...)", "the nearest accepted value is 64"} */
    std::vector<Words> ways;        /**< as in RefusalCauses */
    nlohmann::ordered_json members; /**< the members of addCauses; null if nothing was tried */

    /** The clauses behind a refusal: "; the maximum is set by ...; the nearest accepted value is 64". */
    std::string words() const;
};

/** Finds a suggestion on the scratch board, like findCauses. */
Suggestion suggestionFor(Probe& probe, const Assignment& assignment);
std::vector<Suggestion> suggestionsFor(Probe& probe, const std::vector<Assignment>& assignments);

/** The same for a refusal of the live applet with this code; empty for texts, and for a code of the board. */
Suggestion askSuggestion(LiveSession& live, const Assignment& assignment, int code);

/** The scratch board job that implements it: the Suggestion for the refused {"assignment": WORD}. */
nlohmann::json suggestionJob(ScratchSession& session, const nlohmann::json& arguments);

/** Applies the assignments to the scratch board and makes the result the start state. Throws UsageError
 *  for a word that is not an assignment and AssumptionRefused, with a suggestion, for a refusal. */
void startFrom(ScratchSession& session, const Words& assignments);

} // namespace applet_tools

#endif
