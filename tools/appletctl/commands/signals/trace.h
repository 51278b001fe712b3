/** What a command does to the design of a virtual board. */
#ifndef APPLETCTL_COMMANDS_SIGNALS_TRACE_H
#define APPLETCTL_COMMANDS_SIGNALS_TRACE_H

#include "applet_tools/scratch/Context.h"
#include "appletctl/base/output.h"

#include <functional>

namespace appletctl {

/** The report of `run` with all accesses behind it: in the document, and in the text if it does not show them yet. */
Report traceRun(Context& context, bool isShownByCommand, const std::function<Report()>& run);

/** The lines that are writes. */
std::vector<std::string> writesOf(const std::vector<std::string>& accesses);

/** "Device1_..." of "set Device1_... u32 5". */
std::string writtenParameter(const std::string& line);

} // namespace appletctl

#endif
