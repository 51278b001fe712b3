/** The scratch board jobs of the commands. */
#ifndef APPLETCTL_COMMANDS_JOBS_H
#define APPLETCTL_COMMANDS_JOBS_H

#include "applet_tools/scratch/ScratchSession.h"
#include "appletctl/base/applet_tools.h"

#include <span>

namespace appletctl {

/** Unless noted otherwise, each returns a report, laid out as "plain" says (see reports.h). */

/** Reports the effect of {"words": [NAME=VALUE, ...] or [FILE], "all": whether to show all writes of a file}. */
json planJob(ScratchSession& session, const json& arguments);

/** All of these and those of the library, for the scratch boards. */
std::span<const JobRow> allJobs();

} // namespace appletctl

#endif
