/** An order in which assignments pass. */
#ifndef APPLET_TOOLS_ANSWERS_ORDER_H
#define APPLET_TOOLS_ANSWERS_ORDER_H

#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/ScratchSession.h"

namespace applet_tools {

struct Ordering {
    bool isComplete = false; /**< all of them pass */
    Words words;             /**< those that pass, in their order */
    Words problems;          /**< a sentence for each other one: why it passes in no order */
};

/** Looks for one on the scratch board, from its present state; the board is not put back. Throws UsageError for a word
 *  that is no assignment. */
Ordering findOrder(ScratchSession& session, const Words& assignments);

/** The same from the state of the live applet. */
Ordering askOrder(LiveSession& live, const Words& assignments);

/** The job of a scratch board behind it: {"assignments": [WORD, ...]}: {"isComplete", "words", "problems"}. */
json orderJob(ScratchSession& session, const json& arguments);

} // namespace applet_tools

#endif
