/** The list of all commands. */
#ifndef APPLETCTL_CLI_REGISTRY_H
#define APPLETCTL_CLI_REGISTRY_H

#include "appletctl/commands/Command.h"

#include <span>

namespace appletctl {

/** In the order in which the help lists them. */
std::span<const Command* const> allCommands();

/** Those of a line of a shell: at the end its own words, one of them in place of the program's "help". */
std::span<const Command* const> shellCommands();

} // namespace appletctl

#endif
