/** Options that several commands share. */
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

/** --with NAME=VALUE and --from FILE: the state that a command works in, if not the present one. */
struct WithOption {
    Words assignments;
    std::string file; /**< a configuration file, loaded before the assignments; empty: none */

    bool isGiven() const { return !assignments.empty() || !file.empty(); }
};
/** `startsWith`: what is set stays set while the command runs its board for others. */
void addWith(CLI::App& command, Options& options, bool startsWith);

/** --yes: do not ask. */
struct YesOption {
    bool isGiven = false;
};
void addYes(CLI::App& command, Options& options);

/** Checks an option's value: an unset shell variable must not silently disable it. */
std::string troubleOfFileName(const std::string& name);
/** The same for a file that need not be given. Throws UsageError. */
void requireFileName(const std::optional<std::string>& name);
/** Throws UsageError unless the name of a file to write ends so. `content` is "an SVG picture". */
void requireEnding(const std::string& file, std::string_view ending, const char* content);

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
