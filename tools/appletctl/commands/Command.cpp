#include "appletctl/commands/Command.h"

#include <algorithm>
#include <stdexcept>

namespace appletctl {

Report runCommandNamed(Context& context, std::string_view name, const Words& words) {
    const auto commands = context.program().commands;
    const auto found =
        std::ranges::find_if(commands, [&](const Command* one) { return fullName(*one) == name; });
    if (found == commands.end()) throw std::logic_error("no command '" + std::string(name) + "'");
    return (*found)->run(context, words);
}

} // namespace appletctl
