#include "appletctl/cli/command_tree.h"

#include "appletctl/cli/registry.h"

#include <sstream>

namespace appletctl {

std::string fullNameOf(const CLI::App& app) {
    if (const Command* command = commandOf(app)) return calledName(*command);
    const CLI::App* parent = app.get_parent();
    return parent == nullptr ? app.get_name() : fullNameOf(*parent) + " " + app.get_name();
}

const CommandGroup* groupNamed(const std::string& name) {
    for (const Command* command : allCommands())
        if (command->group != nullptr && command->group->name == name) return command->group;
    return nullptr;
}

const Command* commandOf(const CLI::App& app) {
    const auto* const node = dynamic_cast<const CommandNode*>(&app);
    return node == nullptr ? nullptr : &node->row;
}

Words choicesIn(const std::string& text) {
    const std::size_t begin = text.find('{'), end = text.find('}');
    if (begin == std::string::npos || end == std::string::npos) return {};
    Words choices;
    std::istringstream list(text.substr(begin + 1, end - begin - 1));
    for (std::string choice; std::getline(list, choice, ',');)
        choices.push_back(choice);
    return choices;
}

} // namespace appletctl
