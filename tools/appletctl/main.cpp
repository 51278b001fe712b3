/** appletctl: shows and sets the parameters of the applet on the virtual board. */
#include "appletctl/commands.h"
#include "appletctl/text.h"

#include "applet_host/AppletHost.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <limits>
#include <string_view>

namespace {

using namespace appletctl;

/** A command below which others stand. */
struct Parent {
    const char* name;
    const char* help;
};

constexpr Parent traceParent = {"trace", "Show what a command does to the design"};
constexpr Parent lutParent = {"lut", "Show, draw, save and load the lookup table"};

struct Command {
    const Parent* parent; // null at the top
    const char* name;
    const char* help;
    const char* argument; // what its words are, or null if it takes none
    const char* argumentHelp;
    int fewest, most; // number of words; most -1: as many as there are
    Report (*run)(const Options&, const Words&);
    void (*addOptions)(CLI::App& command, Options& options) = nullptr; // its own ones
};

void addLutColour(CLI::App& command, Options& options) {
    command.add_option("--color", options.lutColour, "Colour to draw: red, green, blue or all")
        ->check(CLI::IsMember({"red", "green", "blue", "all"}));
}

void addXmlFile(CLI::App& command, Options& options) {
    command.add_option("--out", options.xmlFile, "File to write instead of the standard output")
        ->type_name("FILE");
}

void addWatchOptions(CLI::App& command, Options& options) {
    constexpr int longestInterval = 24 * 60 * 60 * 1000;
    command.add_option("--interval", options.watchInterval, "Milliseconds from round to round")
        ->type_name("MS")
        ->check(CLI::Range(1, longestInterval));
    command.add_option("--count", options.watchCount, "Number of rounds; without it the watch has no end")
        ->type_name("N")
        ->check(CLI::Range(1, std::numeric_limits<int>::max()));
}

constexpr Command commands[] = {
    {nullptr, "list", "Show parameters as a table: name, value, unit, access, limits or entries", "PATTERN",
     "Part of a name, or a pattern with * ? [..]", 0, 1, listParameters},
    {nullptr, "get", "Read parameters", "NAME", "Parameters, in any case, with or without FG_", 1, -1,
     getParameters},
    {nullptr, "set", "Set parameters in order; stops at the first refusal", "NAME=VALUE",
     "Numbers decimal or 0x.., entries of enumerations by name or number", 1, -1, setParameters},
    {nullptr, "describe", "Show all that is known of parameters", "NAME", "Parameters", 1, -1,
     describeParameters},
    {nullptr, "info", "Show what the applet says of itself", nullptr, nullptr, 0, 0, showInfo},
    {nullptr, "xml", "Show the XML document that describes the parameters", nullptr, nullptr, 0, 0, showXml,
     addXmlFile},
    {nullptr, "events", "Show the events of the design: names, masks, what comes with them", nullptr, nullptr,
     0, 0, listEvents},
    {nullptr, "watch", "Read parameters over and over; ends on Ctrl-C", "NAME", "Parameters", 1, -1,
     watchParameters, addWatchOptions},
    {nullptr, "route", "Show what each output, analyzer and event listens to, and what the board holds",
     "NAME=VALUE", "Assignments to carry out before", 0, -1, showRoutes},
    {nullptr, "save", "Save the parameters to a configuration file", "FILE",
     "File to write, .mcf, then assignments to carry out before", 1, -1, saveConfiguration},
    {nullptr, "load", "Load a configuration file and say what was lost of it", "FILE",
     "File to read, then assignments to carry out before", 1, -1, loadConfiguration},
    {nullptr, "check", "Say what a load of a configuration file would lose", "FILE", "File to read", 1, 1,
     checkConfiguration},
    {nullptr, "diff", "Compare a configuration file with another one, or with the parameters", "FILE",
     "File, then another one or assignments to carry out before", 1, -1, compareConfigurations},
    {&traceParent, "set", "Set parameters and show what reached the design, in order", "NAME=VALUE",
     "As for the command set", 1, -1, traceSet},
    {&lutParent, "show", "Show what the tables are like, and a curve", "NAME=VALUE",
     "Assignments to carry out before", 0, -1, showLut, addLutColour},
    {&lutParent, "plot", "Draw the curves of all colours as SVG", "FILE",
     "File to write, .svg, then assignments to carry out before", 1, -1, plotLut},
    {&lutParent, "save", "Save the tables to a .lut file", "FILE",
     "File to write, then assignments to carry out before", 1, -1, saveLut},
    {&lutParent, "load", "Load the tables from a .lut file", "FILE",
     "File to read, then assignments to carry out before", 1, -1, loadLut},
};

constexpr const char* notes =
    "Each run starts a fresh virtual board with the defaults; nothing is kept for the next run.\n"
    "Access: ro read-only, rw writable, rw+ writable while an acquisition runs as well.\n"
    "Exit codes: 0 done, 1 refused, lost, different or failed, 2 wrong usage (diff: any trouble).";

/** What the command line asks for. */
struct Request {
    Options options;
    const Command* command = nullptr;
    Words words;
};

/** "trace set". */
std::string fullName(const Command& command) {
    return (command.parent != nullptr ? std::string(command.parent->name) + " " : "") + command.name;
}

/** The command below which others stand; made when it is first asked for. */
CLI::App* parentCommand(CLI::App& program, const Parent* parent) {
    if (parent == nullptr) return &program;
    for (CLI::App* command : program.get_subcommands(nullptr))
        if (command->get_name() == parent->name) return command;
    return program.add_subcommand(parent->name, parent->help)->require_subcommand(0, 1);
}

void addCommand(CLI::App& program, const Command& command, Request& request) {
    CLI::App* parent = parentCommand(program, command.parent);
    CLI::App* added = parent->add_subcommand(command.name, command.help);
    if (command.argument != nullptr) {
        CLI::Option* words = added->add_option(command.argument, request.words, command.argumentHelp);
        words->expected(command.fewest,
                        command.most < 0 ? CLI::detail::expected_max_vector_size : command.most);
        words->required(command.fewest > 0);
    }
    if (command.addOptions != nullptr) command.addOptions(*added, request.options);
    added->callback([&request, &command] { request.command = &command; });
}

/** The report of the command; all failures as reports too. */
Report run(const Request& request) {
    try {
        return request.command->run(request.options, request.words);
    } catch (const UsageError& error) {
        return failureReport("usage", error.what(), exitUsage);
    } catch (const std::exception& error) { // HostError, Failure, out of memory
        return failureReport("failure", error.what(), exitRefused);
    }
}

/** The command that the user may have meant; empty if none is near. */
std::string didYouMean(const std::string& word) {
    for (const std::size_t distance : {0u, 1u, 2u})
        for (const Command& command : commands)
            if (editDistance(word, command.name) == distance)
                return "; did you mean '" + fullName(command) + "'?";
    return "; 'appletctl --help' lists the commands";
}

std::string whatIsWrong(const CLI::App& program, const CLI::ParseError& error) {
    const std::vector<std::string> unknown = program.remaining(true);
    if (program.get_subcommands().empty() && !unknown.empty() && !unknown.front().starts_with('-'))
        return "there is no command '" + printable(unknown.front()) + "'" + didYouMean(unknown.front());
    return printable(error.what()) + "; 'appletctl --help' shows the usage";
}

/** Ends a run whose command line asks for help or cannot be understood. */
int endParsing(const CLI::App& program, const CLI::ParseError& error, bool json) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) return program.exit(error);
    return print(failureReport("usage", whatIsWrong(program, error), exitUsage), "", json);
}

} // namespace

int main(int argc, char** argv) {
    CLI::App program("Shows and sets the parameters of the applet on the virtual board.", "appletctl");
    Request request;
    program.fallthrough();            // global options may stand behind the command as well
    program.require_subcommand(0, 1); // a further word of that name is the command's own
    program.footer(notes);
    program.set_version_flag("--version", APPLETCTL_VERSION);
    program.add_flag("--json", request.options.json, "Print one JSON document instead of text");
    program.add_flag("--offline", request.options.offline, "Use an instance of the applet without a board");
    program.add_option("--applet", request.options.applet, "Applet library to load")->type_name("FILE");
    for (const Command& command : commands)
        addCommand(program, command, request);
    try {
        program.parse(argc, argv);
        if (request.command == nullptr) throw CLI::RequiredError("A command");
    } catch (const CLI::ParseError& error) {
        const bool json =
            std::any_of(argv + 1, argv + argc, [](std::string_view word) { return word == "--json"; });
        return endParsing(program, error, json);
    }
    return print(run(request), fullName(*request.command), request.options.json);
}
