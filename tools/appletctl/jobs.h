/** What a scratch board can be asked to find out; each job stands in the source of its command. */
#ifndef APPLETCTL_JOBS_H
#define APPLETCTL_JOBS_H

#include "appletctl/Trial.h"

#include <string>

namespace appletctl {

/** Carries out {"assignments": [WORD, ...]} and gives the report with the writes of each: {"document", "text",
 *  "problems", "exitCode"}. */
json planJob(Trial& trial, const json& arguments);

/** The job of that name; every name is one of the table's. */
Job findJob(const std::string& name);

} // namespace appletctl

#endif
