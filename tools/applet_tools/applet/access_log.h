/** Accesses to the design, as the virtual board logs them. */
#ifndef APPLET_TOOLS_APPLET_ACCESS_LOG_H
#define APPLET_TOOLS_APPLET_ACCESS_LOG_H

#include "applet_tools/applet/Instance.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace applet_tools {

/** From now on the board logs only writes to the design. */
void logWrites(Instance& instance);

/** From now on the board logs all accesses to values of the design. */
void logAccesses(Instance& instance);

/** Takes the log: one line for each access since the last call (see vboard_log_line). */
std::vector<std::string> takeAccessLog(Instance& instance);

/** The lines that are writes. */
std::vector<std::string> writesOf(const std::vector<std::string>& accesses);

/** The words of a line of the log, such as "set Device1_... u32 5". */
struct LoggedAccess {
    std::string access, parameter, type, value;
    bool hasFailed = false; /**< "= CODE" follows the value */
};
LoggedAccess loggedAccess(const std::string& line);

/** Lines of the log as a list of objects: {"access": "set", "parameter": "Device1_...", "type": "u32",
 *  "value": 2048}; "first" and "count" of a field, "error" of an access that failed. */
nlohmann::ordered_json accessesAsJson(const std::vector<std::string>& lines);

/** The log line of such an object. */
std::string loggedLine(const nlohmann::ordered_json& access);

} // namespace applet_tools

#endif
