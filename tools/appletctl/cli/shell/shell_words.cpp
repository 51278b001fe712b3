// The words of the shell itself, which LineSession executes.

#include "appletctl/commands/Command.h"

namespace appletctl {

extern const Command undoCommand, shellHelpCommand, exitCommand, quitCommand;

const Command undoCommand = {
    .name = "undo",
    .help = "Undo the last command that changed something",
    .examples = {{"undo", "then once more for the command before it"}},
    .kind = Command::Kind::ofShell,
    .sets = Command::Sets::always,
};

const Command shellHelpCommand = {
    .name = "help",
    .help = "This list, or examples and options of a command",
    .argument = "COMMAND",
    .argumentHelp = "The command; without it, all are listed",
    .examples = {{"help", "all commands"}, {"help set", "one of them"}},
    .most = 2,
    .kind = Command::Kind::ofShell,
    .withoutBoard = "",
};

const Command exitCommand = {
    .name = "exit",
    .help = "End the shell; so does the end of the input",
    .examples = {{"exit", "the same as Ctrl-D"}},
    .kind = Command::Kind::ofShell,
    .withoutBoard = "",
};

const Command quitCommand = {
    .name = "quit",
    .help = "The same as exit",
    .examples = {{"quit", "the same as Ctrl-D"}},
    .kind = Command::Kind::ofShell,
    .withoutBoard = "",
};

} // namespace appletctl
