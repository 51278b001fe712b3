// The words of the shell itself, which LineSession executes.

#include "appletctl/commands/Command.h"

namespace appletctl {

extern const Command undoCommand, shellHelpCommand, exitCommand, quitCommand;

const Command undoCommand = {
    .name = "undo",
    .help = "Undo the last command that changed something",
    .kind = Command::Kind::ofShell,
    .sets = Command::Sets::always,
};

const Command shellHelpCommand = {
    .name = "help",
    .help = "This list, or examples and options of a command",
    .argument = "COMMAND",
    .argumentHelp = "The command; without it, all are listed",
    .most = 2,
    .kind = Command::Kind::ofShell,
    .withoutBoard = "",
};

const Command exitCommand = {
    .name = "exit",
    .help = "End the shell; so does the end of the input",
    .kind = Command::Kind::ofShell,
    .withoutBoard = "",
};

const Command quitCommand = {
    .name = "quit",
    .help = "The same as exit",
    .kind = Command::Kind::ofShell,
    .withoutBoard = "",
};

} // namespace appletctl
