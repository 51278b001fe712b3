/** Parts of reports on configuration files. */
#ifndef APPLETCTL_COMMANDS_FILE_REPORTS_H
#define APPLETCTL_COMMANDS_FILE_REPORTS_H

#include "applet_tools/answers/differences.h"
#include "applet_tools/answers/loading/loading.h"
#include "appletctl/base/Report.h"

#include <vector>

namespace appletctl {

/** Whether the sides are the same configuration before and after something, or two configurations. */
enum class Sides { inTime, apart };

/** Adds the table to the text and "differences" to the document. Simulator rates that differ by one cycle (see
 *  Difference) are in one line after the table, with --plain in its rows. */
void addDifferences(Report& report, const std::vector<Side>& sides,
                    const std::vector<Difference>& differences, Sides kind);

/** Adds the losses to the problems, rounded values and losses that follow from others to the text, and all of them to
 *  the document. */
void addFindings(Report& report, const std::vector<Finding>& findings);

} // namespace appletctl

#endif
