/** What a scratch board can be asked to find out; each job stands in the source of its command. */
#ifndef APPLETCTL_COMMANDS_JOBS_H
#define APPLETCTL_COMMANDS_JOBS_H

#include "appletctl/scratch/ScratchSession.h"

#include <span>

namespace appletctl {

/** What each gives is a report (see reports.h) where nothing else is said. */

/** Says what {"words": [NAME=VALUE, ...] or [FILE]} would do. */
json planJob(ScratchSession& session, const json& arguments);

/** Loads {"file": FILE}: {"report", "code", "state"}. */
json checkJob(ScratchSession& session, const json& arguments);

/** Compares [{"title", "member", "text"}, ...]; a text of null stands for the defaults. */
json differencesJob(ScratchSession& session, const json& sides);

/** The values of all that has a setter, in the order of the applet's start: [{"name", "value"}, ...]. */
json defaultsJob(ScratchSession& session, const json& nothing);

/** The numbers of the design that {"assignments": [WORD, ...]} write, as they are afterwards: {NAME: TEXT}. */
json expectJob(ScratchSession& session, const json& arguments);

/** Looks for an order of {"assignments": [WORD, ...]}: {"isComplete", "words", "problems"}. */
json orderJob(ScratchSession& session, const json& arguments);

/** What is written for pairs of source and polarity, [{"name", "value"}, {"name", "value"}, ...]:
 *  [[{"parameter", "expected"}, {"parameter", "expected"}], ...]. */
json routesJob(ScratchSession& session, const json& pairs);

/** What to do about the refused {"assignment": WORD}: {"words", "row"}. */
json suggestionJob(ScratchSession& session, const json& arguments);

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
