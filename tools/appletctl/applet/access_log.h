/** What reaches the design, as the virtual board logs it. */
#ifndef APPLETCTL_APPLET_ACCESS_LOG_H
#define APPLETCTL_APPLET_ACCESS_LOG_H

#include "appletctl/applet/Instance.h"

#include <string>
#include <vector>

namespace appletctl {

/** From now on the board logs what is written to it, and nothing else. */
void logWrites(Instance& instance);

/** From now on it logs all accesses to values of the design. */
void logAccesses(Instance& instance);

/** A line of the log as output; its words are the cells with --plain. */
std::string accessLine(const std::string& line);

/** The log since it was last taken, one line for each write (see vboard_log_line). */
std::vector<std::string> takeWrites(Instance& instance);

} // namespace appletctl

#endif
