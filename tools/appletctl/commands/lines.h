/** Output lines that several commands share. */
#ifndef APPLETCTL_COMMANDS_LINES_H
#define APPLETCTL_COMMANDS_LINES_H

#include "applet_tools/applet/values.h"
#include "appletctl/base/applet_tools.h"

#include <string>

namespace appletctl {

/** "FG_WIDTH = 1024 pixel"; with --plain the name, the value as valueText and the unit. */
std::string valueLine(const Target& target, const Value& value);

/** A line of the board's log; its words are the cells with --plain. */
std::string accessLine(const std::string& line);

} // namespace appletctl

#endif
