/** What a scratch board can be asked to find out; each job stands in the source of its command. */
#ifndef APPLETCTL_COMMANDS_JOBS_H
#define APPLETCTL_COMMANDS_JOBS_H

#include "applet_tools/scratch/ScratchSession.h"

#include <span>

namespace appletctl {

/** What each gives is a report (see reports.h) where nothing else is said. */

/** Says what {"words": [NAME=VALUE, ...] or [FILE], "all": whether all writes of a file are shown} would do. */
json planJob(ScratchSession& session, const json& arguments);

/** Loads {"file": FILE}: {"report", "code", "state"}. */
json checkJob(ScratchSession& session, const json& arguments);

/** Compares {"sides": [{"title", "member", "text"}, ...], "isNextCycleSame": BOOL} (see NextCycle); a text of null stands
 *  for the defaults. */
json differencesJob(ScratchSession& session, const json& arguments);

/** The values of all that has a setter, in the order of the applet's start: [{"name", "value"}, ...]. */
json defaultsJob(ScratchSession& session, const json& nothing);

/** Carries out {"assignments": [WORD, ...]}: {"design": {NAME: NUMBER}, the numbers of the design that were written, as
 *  they are afterwards, "taken": [VALUE, ...], what each parameter read after its assignment}. */
json expectJob(ScratchSession& session, const json& arguments);

/** Looks for an order of {"assignments": [WORD, ...]}: {"isComplete", "words", "problems"}. */
json orderJob(ScratchSession& session, const json& arguments);

/** What is written for groups of values, [[{"name", "value"}, ...], ...]: the last write to each parameter of the
 *  design, [[{"parameter", "expected"}, ...], ...]. */
json routesJob(ScratchSession& session, const json& groups);

/** Finds what the setters of {"names": [WORD, ...]} accept. A list "with" of assignments goes before, as in the
 *  two below. */
json limitsJob(ScratchSession& session, const json& arguments);

/** Says why {"words": [NAME or NAME=VALUE, ...]} are read-only or refused. */
json whyJob(ScratchSession& session, const json& arguments);

/** Finds what the parameter {"name": NAME, "dot": BOOL} moves and what moves it. */
json depsJob(ScratchSession& session, const json& arguments);

/** Tells the findings (see lint.h) of the present state, or with {"file": NAME} after a load of that file. */
json lintJob(ScratchSession& session, const json& arguments);

/** All of them, for the scratch boards. */
std::span<const JobRow> allJobs();

} // namespace appletctl

#endif
