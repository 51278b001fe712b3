/** The commands of appletctl. Each takes what the run stands on and its words and gives back its report; UsageError and
 *  the failures leave it as exceptions. */
#ifndef APPLETCTL_COMMANDS_H
#define APPLETCTL_COMMANDS_H

#include "appletctl/Context.h"
#include "appletctl/output.h"

namespace appletctl {

Report listParameters(Context& context, const Words& pattern);
Report getParameters(Context& context, const Words& names);
Report setParameters(Context& context, const Words& assignments);
Report traceSet(Context& context, const Words& assignments);
/** What the assignments would do, tried on a scratch board. */
Report planChanges(Context& context, const Words& assignments);
Report describeParameters(Context& context, const Words& names);
Report showInfo(Context& context, const Words& none);
Report showXml(Context& context, const Words& none);
Report listEvents(Context& context, const Words& none);
/** Prints round after round until it is told to end; only its problems are left to print. */
Report watchParameters(Context& context, const Words& names);
/** The assignments are carried out first. */
Report showRoutes(Context& context, const Words& assignments);

/* Of configuration files. The assignments are carried out first. */
Report saveConfiguration(Context& context, const Words& fileAndAssignments);
Report loadConfiguration(Context& context, const Words& fileAndAssignments);
Report checkConfiguration(Context& context, const Words& file);
Report compareConfigurations(Context& context, const Words& filesOrAssignments);

/* Of the lookup table. The assignments are carried out first. */
Report showLut(Context& context, const Words& assignments);
Report saveLut(Context& context, const Words& fileAndAssignments);
Report loadLut(Context& context, const Words& fileAndAssignments);
Report plotLut(Context& context, const Words& fileAndAssignments);

} // namespace appletctl

#endif
