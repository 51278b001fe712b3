/** Parses the command line. */
#ifndef APPLETCTL_CLI_COMMAND_LINE_H
#define APPLETCTL_CLI_COMMAND_LINE_H

#include "appletctl/base/Report.h"
#include "appletctl/cli/registry.h"

#include <string>

namespace CLI {
class App;
}

namespace appletctl {

/** A parsed command line. */
struct Request {
    Options options;
    const Command* command = nullptr; // null for help, version and wrong usage: only `outcome` counts
    Words words;
    Report outcome;
    std::string misused{}; // for wrong usage: full name of the command or group, if known
};

/** Name of the command, also if it was used wrongly; empty if there is none. */
std::string nameOf(const Request& request);

/** Splits the name of a command into words of a command line: {"lut", "show"}. */
Words wordsOf(const Command& command);

/** The help of the command; null: of the program. */
HelpPage helpOf(const Command* command);

/** Makes the program's commands and options; they write to the request. */
void addCommandsTo(CLI::App& program, Request& request,
                   std::span<const Command* const> commands = allCommands());

/** Parses the words after the program's name; `options` are the defaults. Loads nothing. */
Request parseCommandLine(const Words& words, const Options& options = {},
                         std::span<const Command* const> commands = allCommands());

} // namespace appletctl

#endif
