#include "appletctl/commands/shared_options.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"

#include <CLI/CLI.hpp>

namespace appletctl {

std::string troubleOfFileName(const std::string& name) {
    return name.empty() ? "the name of the file is empty" : "";
}

void requireFileName(const std::optional<std::string>& name) {
    if (name && !troubleOfFileName(*name).empty()) throw UsageError(troubleOfFileName(*name));
}

void requireEnding(const std::string& file, std::string_view ending, const char* content) {
    if (file.ends_with(ending)) return;
    throw UsageError(shownFile(file) + " does not end in " + std::string(ending) + ", and " + content +
                     " is what is written");
}

void addWith(CLI::App& command, Options& options, bool startsWith) {
    auto& own = options.own<WithOption>();
    command
        .add_option("--with", own.assignments,
                    std::string(startsWith ? "Set this at the start" : "Do it as if this were set") +
                        "; may be given more than once")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    command
        .add_option("--from", own.file,
                    startsWith ? "Load this configuration file at the start"
                               : "Do it as if this configuration file were loaded")
        ->type_name("FILE.mcf")
        ->check(troubleOfFileName);
}

void addYes(CLI::App& command, Options& options) {
    command.add_flag("--yes", options.own<YesOption>().isGiven, "Do not ask for confirmation");
}

void addOutFile(CLI::App& command, Options& options) {
    command
        .add_option("-o,--out", options.own<OutFileOption>().file,
                    "File to write instead of the standard output")
        ->type_name("FILE");
}

void addDot(CLI::App& command, Options& options) {
    command.add_flag("--dot", options.own<DotOption>().isWanted, "Print a graph in the language DOT");
}

} // namespace appletctl
