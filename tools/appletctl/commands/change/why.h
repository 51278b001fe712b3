/** What to do about a refusal. */
#ifndef APPLETCTL_COMMANDS_CHANGE_WHY_H
#define APPLETCTL_COMMANDS_CHANGE_WHY_H

#include "appletctl/applet/assignments.h"
#include "appletctl/scratch/Context.h"
#include "appletctl/scratch/Probe.h"

#include <nlohmann/json.hpp>

#include <string>

namespace appletctl {

/** "; the nearest accepted value is 64; accepted with FG_XOFFSET=0", tried on the scratch board; adds "nearest" and
 *  "acceptedWith" to the row. */
std::string addSuggestion(Probe& probe, const Assignment& assignment, nlohmann::ordered_json& row);

/** The same for a refusal of the live applet. */
std::string askSuggestion(Context& context, const Assignment& assignment, nlohmann::ordered_json& row);

} // namespace appletctl

#endif
