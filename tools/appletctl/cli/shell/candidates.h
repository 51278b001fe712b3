/** Completion of words of a command line. */
#ifndef APPLETCTL_CLI_SHELL_CANDIDATES_H
#define APPLETCTL_CLI_SHELL_CANDIDATES_H

#include "applet_tools/applet/ParameterList.h"
#include "applet_tools/base/words.h"
#include "appletctl/base/applet_tools.h"
#include "appletctl/cli/registry.h"

#include <functional>
#include <string>
#include <vector>

namespace appletctl {

struct Candidate {
    std::string text;
    std::string help{};
};

/** The candidates for the last word of a command line with one of the commands. Empty for file names and for
 * free text. `parameters` is called only if names or values of parameters are needed. */
std::vector<Candidate> candidatesFor(const Words& words,
                                     const std::function<const ParameterList&()>& parameters,
                                     std::span<const Command* const> commands = allCommands());

} // namespace appletctl

#endif
