/** What a board holds after assignments, learnt from a scratch board. */
#ifndef APPLET_TOOLS_ANSWERS_EXPECTATION_H
#define APPLET_TOOLS_ANSWERS_EXPECTATION_H

#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/ScratchSession.h"

namespace applet_tools {

// The move of a JSON document checks itself. NOLINTNEXTLINE(bugprone-exception-escape)
struct Expectation {
    json design; /**< {NAME: NUMBER} of the numbers of the design that were written, as they are afterwards */
    json taken;  /**< [VALUE, ...]: what each parameter read after its assignment, as a message; null where it
                      cannot be read */
};

/** Carries out the assignments on the scratch board, up to the first refusal. Throws UsageError for a word that is
 *  none. */
Expectation expectationOf(ScratchSession& session, const Words& assignments);

/** The same from the state of the live applet. */
Expectation askExpectation(LiveSession& live, const Words& assignments);

/** The job of a scratch board behind it: {"assignments": [WORD, ...]}: {"design", "taken"}. */
json expectJob(ScratchSession& session, const json& arguments);

} // namespace applet_tools

#endif
