#include "appletctl/cli/command_line.h"

#include "appletctl/base/text.h"

#include <algorithm>
#include <limits>
#include <sstream>
#include <string_view>

namespace appletctl {
namespace {

constexpr CommandGroup lutGroup = {"lut", "Show, draw, save and load the lookup table"};

void addLutChannel(CLI::App& command, Options& options) {
    command.add_option("--channel", options.lutChannel, "Channel to draw: red, green, blue or all")
        ->check(CLI::IsMember({"red", "green", "blue", "all"}));
}

void addListOptions(CLI::App& command, Options& options) {
    command.add_flag("--changed", options.onlyChanged, "Only what differs from the default");
    command.add_flag("--writable", options.onlyWritable, "Only what can be set now");
    command.add_option("--group", options.group, "Only groups with this in their labels")->type_name("G");
    command.add_option("-f,--columns", options.columns, "Columns: " + join(listColumns(), ","))
        ->type_name("COLS")
        ->delimiter(',')
        ->check(CLI::IsMember(listColumns()).description(""));
}

void addGetOptions(CLI::App& command, Options& options) {
    command.add_flag("-g,--group", options.areGroups, "The names are groups: all their parameters");
    command.add_flag("--raw", options.isRaw, "Bare values, one a line; numbers for enumerations");
}

void addOutFile(CLI::App& command, Options& options) {
    command.add_option("-o,--out", options.outFile, "File to write instead of the standard output")
        ->type_name("FILE");
}

void addXmlOptions(CLI::App& command, Options& options) {
    addOutFile(command, options);
    command.add_flag("--portable", options.isPortable,
                     "A document for other clients, made from the same tree");
    command.add_flag("--check", options.isChecked, "What a client stumbles over in the document");
}

void addTimingOptions(CLI::App& command, Options& options) {
    command.add_option("--svg", options.svgFile, "Picture to write")->type_name("FILE");
    command.add_option("--vcd", options.vcdFile, "Waveforms to write, for a waveform viewer")
        ->type_name("FILE");
}

void addDocsOptions(CLI::App& command, Options& options) {
    command.add_option("--html", options.htmlFile, "Page to write")->type_name("FILE");
    command.add_option("--man", options.manFolder, "Folder for the manual pages")->type_name("DIR");
}

void addRouteOptions(CLI::App& command, Options& options) {
    command.add_flag("--dot", options.dot, "Print a graph in the language DOT");
}

void addWatchOptions(CLI::App& command, Options& options) {
    constexpr int longestInterval = 24 * 60 * 60 * 1000;
    command.add_option("--interval", options.watchInterval, "Milliseconds from round to round")
        ->type_name("MS")
        ->check(CLI::Range(1, longestInterval));
    command.add_option("--count", options.watchCount, "Number of rounds; without it the watch has no end")
        ->type_name("N")
        ->check(CLI::Range(1, std::numeric_limits<int>::max()));
    command
        .add_option("--fail-if", options.watchFailIf,
                    "Condition that ends the watch with exit code 1, such as 'FG_OVERFLOW != 0 || NAME > 5'")
        ->type_name("EXPR");
    command
        .add_option("--alarm-if", options.watchAlarmIf,
                    "Condition that sounds the terminal's bell and marks the round")
        ->type_name("EXPR");
    command.add_flag("--lost-lines", options.watchLostLines,
                     "Alarm when lines are lost: the same as --alarm-if 'FG_OVERFLOW != 0'");
    command.add_flag("--rate", options.watchRate, "Show the change of each number per second");
    command.add_flag("-g,--group", options.areGroups, "The names are groups: all their parameters");
}

void addRunOptions(CLI::App& command, Options& options) {
    command.add_option("--junit", options.junitFile, "File to write a JUnit report to")->type_name("FILE");
    command.add_flag("--fail-fast", options.failFast, "End with the first step that fails");
}

void addShellOptions(CLI::App& command, Options& options) {
    command.add_flag("-k,--keep-going", options.keepGoing, "Go on after a line that fails");
}

void addShells(CLI::App& command, Options&) {
    command.get_option("SHELL")->check(CLI::IsMember({"bash", "zsh", "fish"}));
}

void addWith(CLI::App& command, Options& options) {
    command.add_option("--with", options.with, "Answer as if this were set")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
}

void addDepsOptions(CLI::App& command, Options& options) {
    addWith(command, options);
    command.add_flag("--dot", options.dot, "Print a graph in the language DOT");
}

void addSetOptions(CLI::App& command, Options& options) {
    command.add_flag("--any-order", options.anyOrder, "Find an order in which all pass, and set in it");
    command.add_flag("--verify", options.verify, "Read back, from the design as well");
}

void addAllWrites(CLI::App& command, Options& options) {
    command.add_flag("--all", options.areAllWrites,
                     "Of a file: all writes, also those that repeat what the design holds");
}

void addApplyOptions(CLI::App& command, Options& options) {
    addAllWrites(command, options);
    command.add_flag("--yes", options.yes, "Do it without a question");
}

void addStrict(CLI::App& command, Options& options) {
    command.add_flag("--strict", options.strict, "Load nothing if anything of the file would be lost");
}

void addLive(CLI::App& command, Options& options) {
    command.add_flag("--live", options.live, "Show the parameters beside two files");
}

/** All that stands behind is the business of another command line. */
void addTracedCommand(CLI::App& command, Options&) { command.prefix_command()->fallthrough(false); }

constexpr auto usesNoScratch = Context::Scratch::none;
constexpr auto usesScratchWithoutDesign = Context::Scratch::withoutDesign;
constexpr auto usesScratch = Context::Scratch::wanted;

constexpr Command commands[] = {
    {nullptr, "list", "Show parameters as a table: name, value, unit, access, limits or entries", "PATTERN",
     "Part of a name, or a pattern with * ? [..]", 0, 1, listParameters, usesScratch, addListOptions},
    {nullptr, "get", "Read parameters", "NAME", "Parameters, in any case, with or without FG_", 1, -1,
     getParameters, usesNoScratch, addGetOptions},
    {nullptr, "set", "Set parameters in order; stops at the first refusal", "NAME=VALUE",
     "Numbers decimal or 0x.., entries of enumerations by name or number", 1, -1, setParameters, usesScratch,
     addSetOptions},
    {nullptr, "reset", "Set parameters to their defaults", "NAME",
     "Parameters, all without names; then assignments to carry out before", 0, -1, resetParameters,
     usesScratch},
    {nullptr, "limits", "Show what is accepted now, and which parameter sets each limit", "NAME",
     "Parameters, or elements of one", 1, -1, showLimits, usesScratch, addWith},
    {nullptr, "why", "Say why a parameter is read-only or refuses a value, and what would free it",
     "NAME[=VALUE]", "Parameters or assignments", 1, -1, explainParameters, usesScratch, addWith},
    {nullptr, "deps", "Show what a parameter moves and what moves it", "NAME", "Parameter", 1, 1,
     showDependencies, usesScratch, addDepsOptions},
    {nullptr, "plan", "Show what assignments, or a load of a file, would do, without doing it",
     "NAME=VALUE|FILE", "As for the command set; or a configuration file", 1, -1, planChanges, usesScratch,
     addAllWrites},
    {nullptr, "apply", "Show what they would do, and do it after a question", "NAME=VALUE|FILE",
     "As for the command plan", 1, -1, applyChanges, usesScratch, addApplyOptions},
    {nullptr, "describe", "Show all that is known of parameters", "NAME", "Parameters", 1, -1,
     describeParameters, usesScratch},
    {nullptr, "info", "Show what the applet says of itself", nullptr, nullptr, 0, 0, showInfo},
    {nullptr, "xml", "Show the XML document that describes the parameters", nullptr, nullptr, 0, 0, showXml,
     usesScratchWithoutDesign, addXmlOptions},
    {nullptr, "events", "Show the events of the design: names, masks, what comes with them", nullptr, nullptr,
     0, 0, listEvents},
    {nullptr, "watch", "Read parameters over and over; ends on Ctrl-C", "NAME", "Parameters", 1, -1,
     watchParameters, usesNoScratch, addWatchOptions},
    {nullptr, "route", "Show what each output, analyzer and event listens to, and what the board holds",
     "NAME=VALUE", "Assignments to carry out before", 0, -1, showRoutes, usesScratch, addRouteOptions},
    {nullptr, "lint", "Say what is legal but doubtful", "FILE",
     "File to look at, or assignments to carry out before", 0, -1, lintParameters, usesScratch},
    {nullptr, "timing", "Show the signals over three line periods, and which output carries them",
     "NAME=VALUE", "Assignments to carry out before", 0, -1, showTiming, usesScratch, addTimingOptions},
    {nullptr, "docs", "Write the documentation of all parameters", nullptr, nullptr, 0, 0, writeDocs,
     usesScratch, addDocsOptions},
    {nullptr, "report", "Write all that a support needs into one file", "NAME=VALUE",
     "Assignments to carry out before", 0, -1, writeReport, usesScratch, addOutFile},
    {nullptr, "save", "Save the parameters to a configuration file", "FILE",
     "File to write, .mcf, then assignments to carry out before", 1, -1, saveConfiguration, usesScratch},
    {nullptr, "load", "Load a configuration file and say what was lost of it", "FILE",
     "File to read, then assignments to carry out before", 1, -1, loadConfiguration, usesScratch, addStrict},
    {nullptr, "check", "Say what a load of a configuration file would lose", "FILE", "File to read", 1, 1,
     checkConfiguration, usesScratch},
    {nullptr, "diff", "Compare a configuration file with another one, or with the parameters", "FILE",
     "File, then another one or assignments to carry out before", 1, -1, compareConfigurations, usesScratch,
     addLive},
    {nullptr, "trace",
     "Show what a command does to the design; or compare two such logs: trace diff FILE FILE", "COMMAND",
     "A command with its words", 0, -1, compareTraces, usesNoScratch, addTracedCommand},
    {nullptr, "run", "Carry out a scenario: steps, and what is expected of them", "FILE",
     "File of steps, one a line", 1, 1, runScenario, usesScratch, addRunOptions},
    {nullptr, "shell", "Carry out commands line by line on one board, with undo", nullptr, nullptr, 0, 0,
     runShell, usesScratch, addShellOptions},
    {nullptr, "completion", "Print the script that completes words of appletctl in a shell", "SHELL",
     "The shell that is to complete", 1, 1, showCompletionScript, usesNoScratch, addShells},
    {nullptr, "__complete", "", "WORD", "", 1, -1, completeWords},
    {&lutGroup, "show", "Show what the tables are like, and a curve", "NAME=VALUE",
     "Assignments to carry out before", 0, -1, showLut, usesScratch, addLutChannel},
    {&lutGroup, "plot", "Draw the curves of all colours as SVG", "FILE",
     "File to write, .svg, then assignments to carry out before", 1, -1, plotLut, usesScratch},
    {&lutGroup, "save", "Save the tables to a .lut file", "FILE",
     "File to write, then assignments to carry out before", 1, -1, saveLut, usesScratch},
    {&lutGroup, "load", "Load the tables from a .lut file", "FILE",
     "File to read, then assignments to carry out before", 1, -1, loadLut, usesScratch},
};

constexpr const char* notes =
    "Each run starts a fresh virtual board with the defaults; nothing is kept for the next run.\n"
    "Access: ro read-only, rw writable, rw+ writable while an acquisition runs as well.\n"
    "Exit codes: 0 done; 1 refused, different or something found; 2 wrong usage; 3 applet, runtime or board "
    "not\n"
    "to be had; 130 interrupted.";

/** The command below which others stand; made when it is first asked for. */
CLI::App* groupCommand(CLI::App& program, const CommandGroup* group) {
    if (group == nullptr) return &program;
    for (CLI::App* command : program.get_subcommands(nullptr))
        if (command->get_name() == group->name) return command;
    return program.add_subcommand(group->name, group->help)->require_subcommand(0, 1);
}

void addCommand(CLI::App& program, const Command& command, Request& request) {
    CLI::App* added = groupCommand(program, command.group)->add_subcommand(command.name, command.help);
    const bool isOfAnother = kindOf(command) == "COMMAND"; // its words are another command line's
    if (command.argument != nullptr && !isOfAnother) {
        CLI::Option* words = added->add_option(command.argument, request.words, command.argumentHelp);
        words->expected(command.fewest,
                        command.most < 0 ? CLI::detail::expected_max_vector_size : command.most);
        words->required(command.fewest > 0);
    }
    if (command.addOptions != nullptr) command.addOptions(*added, request.options);
    if (isHidden(command)) added->group("");
    added->callback([&request, &command, added, isOfAnother] {
        request.command = &command;
        if (isOfAnother) request.words = added->remaining();
    });
}

void addGlobalOptions(CLI::App& program, Options& options) {
    program
        .add_option_function<std::string>(
            "--board",
            [&options](const std::string& kind) {
                options.board = kind == "system" ? BoardKind::system : BoardKind::virtualBoard;
            },
            "virtual: a fresh virtual board; system: the one of the system")
        ->check(CLI::IsMember({"virtual", "system"}));
    program.add_option("--bridge", options.bridge, "Library that opens a board of the system")
        ->type_name("FILE");
    program.add_flag("--offline", options.offline, "Use an instance of the applet without a board");
    program.add_option("--applet", options.applet, "Applet library to load")->type_name("FILE");
    program.add_flag("--json", options.json, "Print one JSON document instead of text");
    program.add_flag("--plain", options.plain, "Print tables as lines with tabs; no colour, no drawing");
    program.add_option("--color", options.colour, "Colour: auto, always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}));
    program.add_flag("-q,--quiet", options.quiet, "Print nothing but errors");
    program.add_flag("-v,--verbose", options.verbose, "Say on the error output how the answer came about");
}

/** The command that the user may have meant; empty if none is near. */
std::string didYouMean(const std::string& word) {
    for (const std::size_t distance : {0u, 1u, 2u})
        for (const Command& command : commands)
            if (editDistance(word, command.name) == distance)
                return "; did you mean '" + fullName(command) + "'?";
    return "; 'appletctl --help' lists the commands";
}

/** The option of the command, or of those given below it, that is nearest to the word; empty if none is. */
std::string nearestOption(const CLI::App& command, const std::string& word) {
    constexpr std::size_t farthest = 2;
    std::string nearest;
    std::size_t least = farthest + 1;
    const auto look = [&](const std::string& name) {
        if (const std::size_t distance = editDistance(word, name); distance < least) {
            least = distance;
            nearest = name;
        }
    };
    for (const CLI::Option* option : command.get_options())
        for (const std::string& name : option->get_lnames())
            look("--" + name);
    for (const CLI::App* below : command.get_subcommands())
        if (const std::string name = nearestOption(*below, word); !name.empty()) look(name);
    return nearest;
}

std::string unknownOption(const CLI::App& program, const std::string& word) {
    const std::string name = word.substr(0, word.find('='));
    const std::string nearest = nearestOption(program, name);
    return "there is no option '" + printable(name) + "'" +
           (nearest.empty() ? "; --help behind the command lists them" : "; did you mean '" + nearest + "'?");
}

std::string whatIsWrong(const CLI::App& program, const CLI::ParseError& error) {
    const std::vector<std::string> unknown = program.remaining(true);
    if (program.get_subcommands().empty() && !unknown.empty() && !unknown.front().starts_with('-'))
        return "there is no command '" + printable(unknown.front()) + "'" + didYouMean(unknown.front());
    if (!unknown.empty() && unknown.front().starts_with('-')) return unknownOption(program, unknown.front());
    return printable(error.what()) + "; 'appletctl --help' shows the usage";
}

/** The outcome of a command line that asks for help or cannot be understood. */
Report endParsing(const CLI::App& program, const CLI::ParseError& error) {
    if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::Success))
        return failureReport("usage", whatIsWrong(program, error), exitUsage);
    std::ostringstream out, err;
    program.exit(error, out, err);
    Report report;
    report.text = out.str();
    report.document["text"] = report.text;
    return report;
}

} // namespace

std::span<const Command> allCommands() { return commands; }

std::string_view kindOf(const Command& command) {
    return command.argument != nullptr ? command.argument : "";
}

bool isHidden(const Command& command) { return std::string_view(command.name).starts_with("__"); }

std::string fullName(const Command& command) {
    return (command.group != nullptr ? std::string(command.group->name) + " " : "") + command.name;
}

namespace {

/** The request of the command behind "trace"; its own options go before those that stood in front of it. */
Request tracedRequest(const Request& trace) {
    Request request = parseCommandLine(trace.words, trace.options);
    if (request.command != nullptr && request.command->run == compareTraces)
        return {
            trace.options, nullptr, {}, failureReport("usage", "'trace' stands behind 'trace'", exitUsage)};
    request.options.trace = true;
    return request;
}

} // namespace

std::string nameOf(const Request& request) {
    if (request.command == nullptr) return "";
    const bool isComparison = request.command->run == compareTraces;
    return (request.options.trace ? "trace " : "") + fullName(*request.command) +
           (isComparison ? " diff" : "");
}

void addCommandsTo(CLI::App& program, Request& request) {
    program.fallthrough();            // global options may stand behind the command as well
    program.require_subcommand(0, 1); // a further word of that name is the command's own
    program.footer(notes);
    program.set_version_flag("--version", APPLETCTL_VERSION);
    addGlobalOptions(program, request.options);
    for (const Command& command : commands)
        addCommand(program, command, request);
}

Request parseCommandLine(const Words& words, const Options& options) {
    Request request{.options = options, .command = nullptr, .words = {}, .outcome = {}};
    CLI::App program("Shows and sets the parameters of the applet.", "appletctl");
    addCommandsTo(program, request);
    try {
        program.parse(Words(words.rbegin(), words.rend()));
        if (request.command == nullptr) throw CLI::RequiredError("A command");
    } catch (const CLI::ParseError& error) {
        request.command = nullptr;
        request.outcome = endParsing(program, error);
        // Which options were read before the error is not told.
        request.options.json |= std::ranges::find(words, "--json") != words.end();
    }
    if (request.command == nullptr || request.command->run != compareTraces) return request;
    if (request.words.empty() || request.words.front() != "diff") return tracedRequest(request);
    request.words.erase(request.words.begin());
    return request;
}

} // namespace appletctl
