/** Logs the accesses of a command to the design of a virtual board. */
#ifndef APPLETCTL_COMMANDS_SIGNALS_TRACE_H
#define APPLETCTL_COMMANDS_SIGNALS_TRACE_H

#include "appletctl/base/Report.h"
#include "appletctl/commands/Context.h"

#include <functional>

namespace appletctl {

/** The report of `run` with all accesses appended: to the document, and to the text if it does not show them
 *  yet. */
Report traceRun(Context& context, bool isShownByCommand, const std::function<Report()>& run);

} // namespace appletctl

#endif
