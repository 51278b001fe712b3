/** An order in which assignments pass. */
#ifndef APPLETCTL_COMMANDS_CHANGE_ORDER_H
#define APPLETCTL_COMMANDS_CHANGE_ORDER_H

#include "appletctl/base/output.h"
#include "appletctl/commands/Context.h"

namespace appletctl {

struct Ordering {
    bool isComplete; /**< all pass in the order of the words */
    Words words;
    Report report; /**< says the order, or what passes in none and why */
};

/** Looks for it on the scratch board. */
Ordering askOrder(Context& context, const Words& assignments);

} // namespace appletctl

#endif
