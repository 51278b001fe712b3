/** The messages about wrong command lines. */
#ifndef APPLETCTL_CLI_USAGE_ERRORS_H
#define APPLETCTL_CLI_USAGE_ERRORS_H

#include "appletctl/commands/Command.h"

#include <CLI/CLI.hpp>

#include <span>
#include <string>

namespace appletctl {

/** The largest editDistance of a misspelt word of the command line. */
std::size_t mostTypos(std::string_view word);

/** "; did you mean 'set'?" for a misspelt command of the group, or of all (null); else a reference to the list. */
std::string commandSuggestion(std::span<const Command* const> commands, const CommandGroup* group,
                              const std::string& word);

/** The error in words that CLI11 rejected. `app` is the command that they belong to, of the program with these
 *  commands. */
std::string usageError(const CLI::App& program, const CLI::App& app, const CLI::ParseError& error,
                       const Words& words, std::span<const Command* const> commands);

/** Throws UsageError when the command takes more or fewer words, or no assignments. */
void checkWords(const Command& command, const Words& words);

} // namespace appletctl

#endif
