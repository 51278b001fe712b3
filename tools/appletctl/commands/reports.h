/** Reports that come from a scratch board. */
#ifndef APPLETCTL_COMMANDS_REPORTS_H
#define APPLETCTL_COMMANDS_REPORTS_H

#include "appletctl/base/Report.h"
#include "appletctl/commands/Context.h"

namespace appletctl {

nlohmann::json asMessage(const Report& report);
Report reportOf(const nlohmann::json& message);

/** Appends the second report to the first: members, text, problems, notes; a failure stays a failure. */
void append(Report& report, const Report& more);

/** The report of a job on a scratch board. */
Report askReport(ScratchBoard& scratch, const std::string& job, nlohmann::json arguments);

/** Layout information for a job, so that it lays its text out for the calling command; call it first. */
void layOutAsAsked(const nlohmann::json& arguments);

/** Reports what the scratch board assumed of the live state: measurements only if they are named
 *  among the words or assignments of the question. */
void addAssumed(Report& report, const Context& context, const Words& words, const Words& assignments);

/** Adds "(assumed: ...)" to the text and "assumed" to the document; nothing if the list is empty. */
void addAssumed(Report& report, const Words& assumed);

} // namespace appletctl

#endif
