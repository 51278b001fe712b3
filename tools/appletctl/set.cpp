#include "appletctl/assignments.h"
#include "appletctl/writes.h"

namespace appletctl {

Report setParameters(const Options& options, const Words& assignments) {
    Instance instance(options);
    return carryOut(instance, ParameterList(instance), assignments);
}

Report traceSet(const Options& options, const Words& assignments) {
    requireBoard(options, "trace set");
    Instance instance(options);
    logWrites(instance);
    return carryOut(instance, ParameterList(instance), assignments, [&] { return takeWrites(instance); });
}

} // namespace appletctl
