/** Predicts the state of a board after assignments, using a scratch board. */
#ifndef APPLET_TOOLS_ANSWERS_EXPECTATION_H
#define APPLET_TOOLS_ANSWERS_EXPECTATION_H

#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/ScratchSession.h"

namespace applet_tools {

// The move of a JSON document checks itself. NOLINTNEXTLINE(bugprone-exception-escape)
struct Expectation {
    json design; /**< {NAME: NUMBER}: the final values of the design parameters that were written */
    json taken;  /**< [VALUE, ...]: each parameter's reading after its assignment, as a message; null if it
                      cannot be read */
};

/** Applies the assignments to the scratch board, up to the first refusal. Throws UsageError for a word that
 *  is not an assignment. */
Expectation expectationOf(ScratchSession& session, const Words& assignments);

/** The same, starting from the state of the live applet. */
Expectation askExpectation(LiveSession& live, const Words& assignments);

/** The scratch board job that implements it: {"assignments": [WORD, ...]} gives {"design", "taken"}. */
json expectJob(ScratchSession& session, const json& arguments);

} // namespace applet_tools

#endif
