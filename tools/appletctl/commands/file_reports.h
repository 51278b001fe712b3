/** What is known of configuration files, as parts of a report. */
#ifndef APPLETCTL_COMMANDS_FILE_REPORTS_H
#define APPLETCTL_COMMANDS_FILE_REPORTS_H

#include "applet_tools/answers/differences.h"
#include "applet_tools/answers/loading.h"
#include "appletctl/base/output.h"

#include <vector>

namespace appletctl {

/** How a rate of the simulator is shown that is one cycle away (see Difference): as a row like others, or behind the
 *  table in one line. */
enum class NextCycle { row, remark };

/** Adds the table to the text and "differences" to the document. */
void addDifferences(Report& report, const std::vector<Side>& sides,
                    const std::vector<Difference>& differences, NextCycle nextCycle = NextCycle::row);

/** Adds the losses to the problems, what was rounded to the text, and all of them to the document. */
void addFindings(Report& report, const std::vector<Finding>& findings);

} // namespace appletctl

#endif
