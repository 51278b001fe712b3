/** What a scratch board can be asked to find out. */
#ifndef APPLETCTL_COMMANDS_JOBS_H
#define APPLETCTL_COMMANDS_JOBS_H

#include "applet_tools/scratch/ScratchSession.h"
#include "appletctl/base/applet_tools.h"

#include <span>

namespace appletctl {

/** What each gives is a report, laid out as "plain" says (see reports.h), where nothing else is said. */

/** Says what {"words": [NAME=VALUE, ...] or [FILE], "all": whether all writes of a file are shown} would do. */
json planJob(ScratchSession& session, const json& arguments);

/** All of them and those of the library, for the scratch boards. */
std::span<const JobRow> allJobs();

} // namespace appletctl

#endif
