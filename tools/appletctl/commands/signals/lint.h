/** States that the applet accepts and that are probably not meant. */
#ifndef APPLETCTL_COMMANDS_SIGNALS_LINT_H
#define APPLETCTL_COMMANDS_SIGNALS_LINT_H

#include "appletctl/commands/Context.h"

#include <nlohmann/json.hpp>

namespace appletctl {

/** Lets the scratch board look: at the live state for an empty name, else at the one after a load of the file.
 *  Gives {"loaded": the load's code, "findings": [{"rule", "names", "values", "why", "advice"}, ...]}. */
nlohmann::json findingsOf(Context& context, const std::string& file);

/** The findings as text. */
std::string findingsText(const nlohmann::json& findings);

} // namespace appletctl

#endif
