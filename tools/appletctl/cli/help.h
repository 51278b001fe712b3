/** The text of --help. */
#ifndef APPLETCTL_CLI_HELP_H
#define APPLETCTL_CLI_HELP_H

#include "appletctl/cli/command_line.h"
#include "appletctl/commands/HelpPage.h"

#include <CLI/CLI.hpp>

#include <string>

namespace appletctl {

/** The help of the program, a group of commands or a command. */
HelpPage helpPageOf(const CLI::App& app);

/** The help of "trace diff", which is parsed by a program of its own. */
HelpPage comparisonHelp(const CLI::App& program);

/** The page that --help prints. */
std::string helpText(const HelpPage& page);

/** The same for a line of the shell: without the program's name and without options that do not work there. */
std::string shellHelp();

} // namespace appletctl

#endif
