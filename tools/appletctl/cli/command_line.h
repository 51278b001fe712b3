/** The command line: its commands and options. */
#ifndef APPLETCTL_CLI_COMMAND_LINE_H
#define APPLETCTL_CLI_COMMAND_LINE_H

#include "appletctl/cli/registry.h"

#include <string>

namespace CLI {
class App;
}

namespace appletctl {

/** What a command line asks for. */
struct Request {
    Options options;
    const Command* command = nullptr; // null for help, version and wrong usage: `outcome` is all
    Words words;
    Report outcome;
    std::string
        misused{}; // wrong usage: full name of the command or the group that it was of, as far as known
};

/** Of the command, also of one that was used wrongly; empty when there is none. */
std::string nameOf(const Request& request);

/** The name of a command as words of a command line: {"lut", "show"}. */
Words wordsOf(const Command& command);

/** What is to be said of the command; null: of the program. */
HelpPage helpOf(const Command* command);

/** Makes the program's commands and options, which write to the request. */
void addCommandsTo(CLI::App& program, Request& request);

/** Reads the words behind the program's name; what they do not say is as in `options`. Nothing is loaded. */
Request parseCommandLine(const Words& words, const Options& options = {});

} // namespace appletctl

#endif
