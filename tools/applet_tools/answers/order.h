/** Finds an order in which assignments are accepted. */
#ifndef APPLET_TOOLS_ANSWERS_ORDER_H
#define APPLET_TOOLS_ANSWERS_ORDER_H

#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/ScratchSession.h"

namespace applet_tools {

struct Ordering {
    bool isComplete = false; /**< all of them are accepted */
    Words words;             /**< the accepted ones, in order */
    Words problems;          /**< for each other one a sentence on why no order helps */
};

/** Searches on the scratch board, from its present state; does not restore the board. Throws UsageError for a
 *  word that is not an assignment. */
Ordering findOrder(ScratchSession& session, const Words& assignments);

/** The same, starting from the state of the live applet. */
Ordering askOrder(LiveSession& live, const Words& assignments);

/** The scratch board job that implements it: {"assignments": [WORD, ...]}: {"isComplete", "words",
 *  "problems"}. */
json orderJob(ScratchSession& session, const json& arguments);

} // namespace applet_tools

#endif
