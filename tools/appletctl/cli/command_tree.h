/** The commands and options in the tree of the parser. */
#ifndef APPLETCTL_CLI_COMMAND_TREE_H
#define APPLETCTL_CLI_COMMAND_TREE_H

#include "appletctl/commands/Command.h"

#include <CLI/CLI.hpp>

#include <string>

namespace appletctl {

/** A node of the tree for a command. */
class CommandNode : public CLI::App {
public:
    CommandNode(const Command& command, CLI::App& parent)
        : CLI::App(command.help, command.name, &parent)
        , row(command) {}

    const Command& row;
};

/** The row of a node of the tree; null for the program and for groups of commands. */
const Command* commandOf(const CLI::App& app);

/** The group of commands with that name; null if there is none. */
const CommandGroup* groupNamed(const std::string& name);

/** "appletctl lut show"; "undo" for a word of the shell itself. */
std::string fullNameOf(const CLI::App& app);

/** The values "a" and "b" of a text with "{a,b}"; empty if it has no braces. */
Words choicesIn(const std::string& text);

/** The possible values of an option or a word, if they form a list. */
inline Words choicesOf(const CLI::Option& option) { return choicesIn(option.get_type_name()); }

} // namespace appletctl

#endif
