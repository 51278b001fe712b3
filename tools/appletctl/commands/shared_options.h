/** Options that several commands have. */
#ifndef APPLETCTL_COMMANDS_SHARED_OPTIONS_H
#define APPLETCTL_COMMANDS_SHARED_OPTIONS_H

#include "applet_tools/base/words.h"
#include "appletctl/base/Options.h"

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace appletctl {

/** --with NAME=VALUE and --from FILE: the state that a command looks at, if it is not the present one. */
struct WithOption {
    Words assignments;
    std::string file; /**< a configuration file, loaded before the assignments; empty: none */

    bool isGiven() const { return !assignments.empty() || !file.empty(); }
};
void addWith(CLI::App& command, Options& options);

/** --yes: do it without a question. */
struct YesOption {
    bool isGiven = false;
};
void addYes(CLI::App& command, Options& options);

/** A check of an option: an unset variable of a shell must not switch it off unnoticed. */
std::string troubleOfFileName(const std::string& name);

/** -o FILE. */
struct OutFileOption {
    std::optional<std::string> file;
};
void addOutFile(CLI::App& command, Options& options);

/** --dot: print a graph instead of text. */
struct DotOption {
    bool isWanted = false;
};
void addDot(CLI::App& command, Options& options);

} // namespace appletctl

#endif
