/** What a scratch board can be asked to find out; each job stands in the source of its command. */
#ifndef APPLETCTL_JOBS_H
#define APPLETCTL_JOBS_H

#include "appletctl/Trial.h"

#include <string>

namespace appletctl {

/** What each gives is a report (see reports.h) where nothing else is said. */

/** Says what {"words": [NAME=VALUE, ...] or [FILE]} would do. */
json planJob(Trial& trial, const json& arguments);

/** Loads {"file": FILE}: {"report", "code", "state"}. */
json checkJob(Trial& trial, const json& arguments);

/** Compares [{"title", "member", "text"}, ...]; a text of null stands for the defaults. */
json differencesJob(Trial& trial, const json& sides);

/** The values of all that has a setter, in the order of the applet's start: [{"name", "value"}, ...]. */
json defaultsJob(Trial& trial, const json& nothing);

/** The numbers of the design that {"assignments": [WORD, ...]} write, as they are afterwards: {NAME: TEXT}. */
json expectJob(Trial& trial, const json& arguments);

/** Looks for an order of {"assignments": [WORD, ...]}: {"isComplete", "words", "problems"}. */
json orderJob(Trial& trial, const json& arguments);

/** What is written for pairs of source and polarity, [{"name", "value"}, {"name", "value"}, ...]:
 *  [[{"parameter", "expected"}, {"parameter", "expected"}], ...]. */
json routesJob(Trial& trial, const json& pairs);

/** What to do about the refused {"assignment": WORD}: {"words", "row"}. */
json wayOutJob(Trial& trial, const json& arguments);

/** Finds what the setters of {"names": [WORD, ...]} accept. A list "with" of assignments goes before, as in the
 *  two below. */
json limitsJob(Trial& trial, const json& arguments);

/** Says why {"words": [NAME or NAME=VALUE, ...]} are read-only or refused. */
json whyJob(Trial& trial, const json& arguments);

/** Finds what the parameter {"name": NAME, "dot": BOOL} moves and what moves it. */
json depsJob(Trial& trial, const json& arguments);

/** Tells {NAME: {"start": VALUE, "settable", "fileRole"}} of {"names": [NAME, ...], "roles": whether the file
 *  roles are wanted} (see Background). */
json backgroundJob(Trial& trial, const json& arguments);

/** Tells the findings (see lint.h) of the present state, or with {"file": NAME} after a load of that file. */
json lintJob(Trial& trial, const json& arguments);

/** The job of that name; every name is one of the table's. */
Job findJob(const std::string& name);

} // namespace appletctl

#endif
