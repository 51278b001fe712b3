/** The commands of appletctl. Each takes the options and its words and gives back its report; UsageError and
 *  the failures leave it as exceptions. */
#ifndef APPLETCTL_COMMANDS_H
#define APPLETCTL_COMMANDS_H

#include "appletctl/Options.h"
#include "appletctl/output.h"

#include <string>
#include <vector>

namespace appletctl {

using Words = std::vector<std::string>;

Report listParameters(const Options& options, const Words& pattern);
Report getParameters(const Options& options, const Words& names);
Report setParameters(const Options& options, const Words& assignments);
Report traceSet(const Options& options, const Words& assignments);
Report describeParameters(const Options& options, const Words& names);
Report showInfo(const Options& options, const Words& none);
Report showXml(const Options& options, const Words& none);
Report listEvents(const Options& options, const Words& none);
/** Prints round after round until it is told to end; only its problems are left to print. */
Report watchParameters(const Options& options, const Words& names);
/** The assignments are carried out first. */
Report showRoutes(const Options& options, const Words& assignments);

/* Of configuration files. The assignments are carried out first. */
Report saveConfiguration(const Options& options, const Words& fileAndAssignments);
Report loadConfiguration(const Options& options, const Words& fileAndAssignments);
Report checkConfiguration(const Options& options, const Words& file);
Report compareConfigurations(const Options& options, const Words& filesOrAssignments);

/* Of the lookup table. The assignments are carried out first. */
Report showLut(const Options& options, const Words& assignments);
Report saveLut(const Options& options, const Words& fileAndAssignments);
Report loadLut(const Options& options, const Words& fileAndAssignments);
Report plotLut(const Options& options, const Words& fileAndAssignments);

} // namespace appletctl

#endif
