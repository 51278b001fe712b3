/** Reports that come from a scratch board. */
#ifndef APPLETCTL_COMMANDS_REPORTS_H
#define APPLETCTL_COMMANDS_REPORTS_H

#include "appletctl/base/output.h"
#include "appletctl/commands/Context.h"

namespace appletctl {

nlohmann::json asMessage(const Report& report);
Report reportOf(const nlohmann::json& message);

/** Puts the second report behind the first one: its members, text, problems, notes; a failure stays one. */
void append(Report& report, const Report& more);

/** The report of a job on a scratch board. */
Report askReport(ScratchBoard& scratch, const std::string& job, nlohmann::json arguments);

/** What a job needs to lay its text out as the command that asks for it; to be called first of all. */
void layOutAsAsked(const nlohmann::json& arguments);

/** Says what of the live state was assumed on the scratch board that answered: of measurements only those that are named
 *  among the words or assignments of the question. */
void addAssumed(Report& report, const Context& context, const Words& words, const Words& assignments);

/** Says it: "(assumed: ...)" in the text, "assumed" in the document; nothing for nothing. */
void addAssumed(Report& report, const Words& assumed);

} // namespace appletctl

#endif
