/** The command line: its commands and options. */
#ifndef APPLETCTL_CLI_COMMAND_LINE_H
#define APPLETCTL_CLI_COMMAND_LINE_H

#include "appletctl/commands/commands.h"

#include <CLI/CLI.hpp>

#include <span>
#include <string>
#include <string_view>

namespace appletctl {

/** A command below which others stand. */
struct CommandGroup {
    const char* name;
    const char* help;
};

struct Command {
    const CommandGroup* group; // null at the top
    const char* name;
    const char* help;
    const char* argument; // what its words are, or null if it takes none
    const char* argumentHelp;
    int fewest, most; // number of words; most -1: as many as there are
    Report (*run)(Context&, const Words&);
    Context::Scratch scratch = Context::Scratch::none;
    void (*addOptions)(CLI::App& command, Options& options) = nullptr; // its own ones
};

std::span<const Command> allCommands();

/** What its words are: "NAME=VALUE"; empty if it takes none. */
std::string_view kindOf(const Command& command);

/** For programs, not for people. */
bool isHidden(const Command& command);

/** "lut show". */
std::string fullName(const Command& command);

/** What a command line asks for. */
struct Request {
    Options options;
    const Command* command = nullptr; // null for help, version and wrong usage: `outcome` is all
    Words words;
    Report outcome;
};

/** Of the command; empty when there is none. */
std::string nameOf(const Request& request);

/** Makes the program's commands and options, which write to the request. */
void addCommandsTo(CLI::App& program, Request& request);

/** Reads the words behind the program's name; what they do not say is as in `options`. Nothing is loaded. */
Request parseCommandLine(const Words& words, const Options& options = {});

} // namespace appletctl

#endif
