#include "appletctl/cli/registry.h"

#include "appletctl/commands/Command.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace appletctl {

// Each is defined in the source of its command.
#define COMMAND(name) extern const Command name##Command;
#include "appletctl/cli/commands.def"
#undef COMMAND
extern const Command undoCommand, shellHelpCommand, exitCommand, quitCommand;

namespace {

constexpr const Command* rows[] = {
#define COMMAND(name) &name##Command,
#include "appletctl/cli/commands.def"
#undef COMMAND
};

} // namespace

std::span<const Command* const> allCommands() { return rows; }

std::span<const Command* const> shellCommands() {
    static const std::vector<const Command*> known = [] {
        const std::vector<const Command*> own = {&undoCommand, &shellHelpCommand, &exitCommand, &quitCommand};
        std::vector<const Command*> all;
        std::ranges::remove_copy_if(rows, std::back_inserter(all), [&](const Command* command) {
            return std::ranges::find(own, fullName(*command),
                                     [](const Command* word) { return fullName(*word); }) != own.end();
        });
        all.insert(all.end(), own.begin(), own.end());
        return all;
    }();
    return known;
}

} // namespace appletctl
