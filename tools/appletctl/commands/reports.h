/** Reports that come from a scratch board. */
#ifndef APPLETCTL_COMMANDS_REPORTS_H
#define APPLETCTL_COMMANDS_REPORTS_H

#include "applet_tools/scratch/Context.h"
#include "appletctl/base/output.h"

namespace appletctl {

nlohmann::json asMessage(const Report& report);
Report reportOf(const nlohmann::json& message);

/** Puts the second report behind the first one: its members, text, problems, notes; a failure stays one. */
void append(Report& report, const Report& more);

/** The report of a job on the scratch board; it says what of the live state was assumed there. */
Report askScratch(Context& context, const std::string& job, const nlohmann::json& arguments);

/** Says it: "(assumed: ...)" in the text, "assumed" in the document; nothing for nothing. */
void addAssumed(Report& report, const Words& assumed);

} // namespace appletctl

#endif
