#include "appletctl/assignments.h"
#include "appletctl/writes.h"

namespace appletctl {

Report setParameters(Context& context, const Words& assignments) {
    Instance& instance = context.instance();
    return carryOut(instance, context.parameters(), assignments);
}

Report traceSet(Context& context, const Words& assignments) {
    requireBoard(context.options(), "trace set");
    Instance& instance = context.instance();
    logWrites(instance);
    return carryOut(instance, context.parameters(), assignments, [&] { return takeWrites(instance); });
}

} // namespace appletctl
