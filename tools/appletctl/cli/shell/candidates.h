/** What a word of a command line can become. */
#ifndef APPLETCTL_CLI_SHELL_CANDIDATES_H
#define APPLETCTL_CLI_SHELL_CANDIDATES_H

#include "applet_tools/applet/ParameterList.h"
#include "applet_tools/base/words.h"
#include "appletctl/base/applet_tools.h"

#include <functional>
#include <string>
#include <vector>

namespace appletctl {

struct Candidate {
    std::string text;
    std::string help{};
};

/** The candidates for the last of the words behind the program's name. None for the name of a file and for
 * what is free. `parameters` is only called when names or values of parameters are wanted. */
std::vector<Candidate> candidatesFor(const Words& words,
                                     const std::function<const ParameterList&()>& parameters);

} // namespace appletctl

#endif
