#include "appletctl/cli/registry.h"

#include "appletctl/commands/Command.h"

namespace appletctl {

// Each is defined in the source of its command.
#define COMMAND(name) extern const Command name##Command;
#include "appletctl/cli/commands.def"
#undef COMMAND

namespace {

constexpr const Command* commands[] = {
#define COMMAND(name) &name##Command,
#include "appletctl/cli/commands.def"
#undef COMMAND
};

} // namespace

std::span<const Command* const> allCommands() { return commands; }

} // namespace appletctl
