/** The list of all commands. */
#ifndef APPLETCTL_CLI_REGISTRY_H
#define APPLETCTL_CLI_REGISTRY_H

#include "appletctl/commands/Command.h"

#include <span>

namespace appletctl {

/** In the order in which the help lists them. */
std::span<const Command* const> allCommands();

} // namespace appletctl

#endif
