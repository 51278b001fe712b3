/** What --help and usage errors say. */
#ifndef APPLETCTL_CLI_HELP_H
#define APPLETCTL_CLI_HELP_H

#include "appletctl/cli/command_line.h"
#include "appletctl/commands/HelpPage.h"

#include <CLI/CLI.hpp>

#include <string>
#include <string_view>

namespace appletctl {

/** The row that a node of the parsed tree was made from; null for the program and for groups of commands. */
const Command* commandOf(const CLI::App& app);

/** What is to be said of the program, a group of commands or a command. */
HelpPage helpPageOf(const CLI::App& app);

/** The page as --help prints it. */
std::string helpText(const HelpPage& page);

/** The same for a line of the shell: its own words, and without what does not work there. */
std::string shellHelp();

/** The line on a word that works in the shell alone, such as "undo"; empty for other words. */
std::string shellWordHelp(const std::string& word);

/** "; did you mean 'set'?" for a misspelt command, of the group or at the top (null); else where they are listed. */
std::string commandSuggestion(const CommandGroup* group, const std::string& word);

/** What is wrong with the words that CLI11 could not take. `app` is the command that they were for. */
std::string usageError(const CLI::App& program, const CLI::App& app, const CLI::ParseError& error,
                       const Words& words);

/** Throws UsageError when there are fewer or more words than the command takes. */
void checkWordCount(const Command& command, const Words& words);

/** The values that an option or a word can have, if there is a list of them. */
std::vector<std::string> choicesOf(const CLI::Option& option);

} // namespace appletctl

#endif
