/** The text of --help and of usage errors. */
#ifndef APPLETCTL_CLI_HELP_H
#define APPLETCTL_CLI_HELP_H

#include "appletctl/cli/command_line.h"
#include "appletctl/commands/HelpPage.h"

#include <CLI/CLI.hpp>

#include <string>
#include <string_view>

namespace appletctl {

/** The row of a node of the parsed tree; null for the program and for groups of commands. */
const Command* commandOf(const CLI::App& app);

/** The help of the program, a group of commands or a command. */
HelpPage helpPageOf(const CLI::App& app);

/** The help of "trace diff", which is parsed by a program of its own. */
HelpPage comparisonHelp(const CLI::App& program);

/** The page that --help prints. */
std::string helpText(const HelpPage& page);

/** The same for a line of the shell: without the program's name and without options that do not work there. */
std::string shellHelp();

/** The explanation of a word that exists only in the shell, such as "undo"; empty for other words. */
std::string shellWordHelp(const std::string& word);

/** "; did you mean 'set'?" for a misspelt command of the group, or of the program (null); else a reference to
 *  the list. */
std::string commandSuggestion(const CommandGroup* group, const std::string& word);

/** The error in words that CLI11 rejected. `app` is the command that they belong to. */
std::string usageError(const CLI::App& program, const CLI::App& app, const CLI::ParseError& error,
                       const Words& words);

/** Throws UsageError when the command takes more or fewer words, or no assignments. */
void checkWords(const Command& command, const Words& words);

/** The possible values of an option or a word, if they form a list. */
std::vector<std::string> choicesOf(const CLI::Option& option);

} // namespace appletctl

#endif
