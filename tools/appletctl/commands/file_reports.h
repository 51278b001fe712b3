/** Parts of reports on configuration files. */
#ifndef APPLETCTL_COMMANDS_FILE_REPORTS_H
#define APPLETCTL_COMMANDS_FILE_REPORTS_H

#include "applet_tools/answers/differences.h"
#include "applet_tools/answers/loading.h"
#include "appletctl/base/output.h"

#include <vector>

namespace appletctl {

/** How to show a simulator rate that differs by one cycle (see Difference): as a row, or in one line after the
 *  table. */
enum class NextCycle { row, remark };

/** Adds the table to the text and "differences" to the document. */
void addDifferences(Report& report, const std::vector<Side>& sides,
                    const std::vector<Difference>& differences, NextCycle nextCycle = NextCycle::row);

/** Adds the losses to the problems, rounded values to the text, and all of them to the document. */
void addFindings(Report& report, const std::vector<Finding>& findings);

} // namespace appletctl

#endif
