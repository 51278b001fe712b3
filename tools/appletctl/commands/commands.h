/** The commands of appletctl. Each takes what the run stands on and its words and gives back its report; UsageError and
 *  the failures leave it as exceptions. */
#ifndef APPLETCTL_COMMANDS_COMMANDS_H
#define APPLETCTL_COMMANDS_COMMANDS_H

#include "appletctl/base/output.h"
#include "appletctl/scratch/Context.h"

namespace appletctl {

/** The names of the columns that "list" knows. */
Words listColumns();
Report listParameters(Context& context, const Words& pattern);
Report getParameters(Context& context, const Words& names);
Report setParameters(Context& context, const Words& assignments);
/** Compares two logs of "trace". */
Report compareTraces(Context& context, const Words& files);
/** What the setters accept now, and what sets each limit. */
Report showLimits(Context& context, const Words& names);
/** Why parameters are read-only, or refuse a value, and what would free them. */
Report explainParameters(Context& context, const Words& words);
/** What a parameter moves, and what moves it. */
Report showDependencies(Context& context, const Words& name);
/** Sets parameters to their defaults; all without names. The assignments are carried out first. */
Report resetParameters(Context& context, const Words& namesAndAssignments);
/** What assignments, or a load of a file, would do, tried on a scratch board. */
Report planChanges(Context& context, const Words& assignmentsOrFile);
/** The same, and then does it. */
Report applyChanges(Context& context, const Words& assignmentsOrFile);
Report describeParameters(Context& context, const Words& names);
/** Findings in the present state, after the assignments, or in the state that a load of the file would give. */
Report lintParameters(Context& context, const Words& fileOrAssignments);
/** The assignments are carried out first. */
Report showTiming(Context& context, const Words& assignments);
Report writeDocs(Context& context, const Words& none);
/** All that a support needs; the assignments are carried out first. */
Report writeReport(Context& context, const Words& assignments);
Report showInfo(Context& context, const Words& none);
Report showXml(Context& context, const Words& none);
Report listEvents(Context& context, const Words& none);
/** Prints round after round until it is told to end; only its problems are left to print. */
Report watchParameters(Context& context, const Words& names);
/** Prints each step as it is done; only its problems are left to print. */
Report runScenario(Context& context, const Words& file);
/** Carries out the lines of the standard input. */
Report runShell(Context& context, const Words& none);
/** The script that a shell reads to complete words of appletctl. */
Report showCompletionScript(Context& context, const Words& shell);
/** What the last word can become. */
Report completeWords(Context& context, const Words& words);
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
