#include "appletctl/cli/command_line.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "appletctl/cli/command_tree.h"
#include "appletctl/cli/help.h"
#include "appletctl/cli/usage_errors.h"
#include "appletctl/commands/shared_options.h"

#include <algorithm>

namespace appletctl {
namespace {

/** The CLI11 command of a group; made on first use. */
CLI::App* groupCommand(CLI::App& program, const CommandGroup* group) {
    if (group == nullptr) return &program;
    for (CLI::App* command : program.get_subcommands(nullptr))
        if (command->get_name() == group->name) return command;
    return program.add_subcommand(group->name, group->help)->require_subcommand(0, 1);
}

void addCommand(CLI::App& program, const Command& command, Request& request) {
    CLI::App* const above = groupCommand(program, command.group);
    CLI::App* const added = above->add_subcommand(std::make_shared<CommandNode>(command, *above));
    const bool isOfAnother = command.kind == Command::Kind::prefix; // its words form another command line
    if (command.argument != nullptr && !isOfAnother) {
        CLI::Option* words = added->add_option(command.argument, request.words, command.argumentHelp);
        // Their number is checked later, for better messages.
        words->expected(1, CLI::detail::expected_max_vector_size);
    }
    if (isOfAnother) added->prefix_command()->fallthrough(false); // including their options
    if (command.showsValues) addWith(*added, request.options, command.managesStations);
    if (command.sets != Command::Sets::nothing) addYes(*added, request.options);
    if (command.addOptions != nullptr) command.addOptions(*added, request.options);
    if (isHidden(command)) added->group("");
    added->callback([&request, &command, added, isOfAnother] {
        request.command = &command;
        checkWords(command, isOfAnother ? added->remaining() : request.words);
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
            "virtual: a fresh virtual board; system: the one of the system, to which the start of the applet "
            "writes all defaults")
        ->check(CLI::IsMember({"virtual", "system"}));
    program.add_option("--bridge", options.bridge, "Library that opens a board of the system")
        ->type_name("FILE")
        ->check(troubleOfFileName);
    program.add_flag(
        "--look", options.look,
        "Start the applet without writing to the board, and refuse what would write. Settings show "
        "the applet's initial values, measured values those of the board");
    program.add_flag("--offline", options.offline, "Use an instance of the applet without a board");
    program
        .add_option("--station", options.station,
                    "Let the running station of that name execute the command (see 'serve')")
        ->type_name("NAME")
        ->check(
            [](const std::string& name) { return name.empty() ? "the name of the station is empty" : ""; })
        ->envname("APPLETCTL_STATION");
    program.add_option("--applet", options.applet, "Applet library to load")
        ->type_name("FILE")
        ->check(troubleOfFileName);
    program.add_flag("--json", options.json, "Print one JSON document instead of text");
    program.add_flag("--plain", options.plain, "Print tables as lines with tabs; no colour, no drawing");
    program.add_option("--color", options.colour, "Colour: auto, always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}));
    program.add_flag("-q,--quiet", options.quiet, "Print nothing but errors");
    program.add_flag("-v,--verbose", options.verbose, "Show on the error output how the answer was found");
}

constexpr const char* programDescription = "Shows and sets the parameters of the applet.";

/** The innermost command that the words name. */
const CLI::App& reached(const CLI::App& app) {
    const auto below = app.get_subcommands();
    return below.empty() ? app : reached(*below.front());
}

/** "lut show", "trace"; empty if not even a group of commands is named. */
std::string reachedName(const CLI::App& app) {
    const auto below = app.get_subcommands();
    if (below.empty()) return "";
    const std::string rest = reachedName(*below.front());
    return below.front()->get_name() + (rest.empty() ? "" : " " + rest);
}

/** The message if only a group of commands, or nothing, is named. */
std::string commandMissing(const CLI::App& program) {
    const auto groups = program.get_subcommands();
    if (groups.empty()) return "A command is required";
    Words names;
    for (const CLI::App* one : groups.front()->get_subcommands(nullptr))
        names.push_back(one->get_name());
    return "'" + groups.front()->get_name() + "' needs one of " + join(names, ", ");
}

/** The result of a command line that asks for help or is invalid. */
Report endParsing(const CLI::App& program, const CLI::ParseError& error, const Words& words,
                  std::span<const Command* const> commands = allCommands()) {
    const CLI::App& app = reached(program);
    const bool isHelp = dynamic_cast<const CLI::CallForHelp*>(&error) != nullptr;
    const std::vector<std::string> unknown = program.remaining(true);
    const bool isUnknown = isHelp && commandOf(app) == nullptr && !unknown.empty();
    if (isUnknown || (!isHelp && dynamic_cast<const CLI::CallForVersion*>(&error) == nullptr))
        return failureReport("usage", usageError(program, app, error, words, commands), exitUsage);
    Report report;
    report.text = isHelp ? helpText(helpPageOf(app)) : APPLETCTL_VERSION "\n";
    report.document["text"] = report.text;
    return report;
}

Request misuse(const Options& options, const std::string& name, const std::string& words) {
    return {options, nullptr, {}, failureReport("usage", words, exitUsage), name};
}

/** The request of the command after "trace"; its own options override those before it. */
Request tracedRequest(const Request& trace) {
    if (trace.words.empty())
        return misuse(trace.options, "trace",
                      "'trace' needs a command with its words, or 'diff' and two files; 'appletctl trace "
                      "--help' shows the usage");
    Request request = parseCommandLine(trace.words, trace.options);
    if (request.command != nullptr && request.command->kind == Command::Kind::prefix)
        return misuse(trace.options, "trace", "'trace' cannot be traced");
    if (request.outcome.exitCode == exitUsage)
        request.misused = request.misused.empty() || request.misused.starts_with("trace")
                              ? "trace"
                              : "trace " + request.misused;
    request.options.trace = true;
    return request;
}

/** The request of "trace diff": its words are files and global options. */
Request comparison(Request request) {
    const Words words(request.words.begin() + 1, request.words.end());
    request.words.clear();
    CLI::App program("", "appletctl trace diff");
    program.set_help_flag("-h,--help", "Show this help");
    addGlobalOptions(program, request.options);
    program.add_option("FILE", request.words)->expected(0, CLI::detail::expected_max_vector_size);
    try {
        program.parse(Words(words.rbegin(), words.rend()));
        return request;
    } catch (const CLI::CallForHelp&) {
        Report report;
        report.text = helpText(comparisonHelp(program));
        report.document["text"] = report.text;
        return {request.options, nullptr, {}, std::move(report), {}};
    } catch (const CLI::ParseError& error) {
        request.options.json |= std::ranges::find(words, "--json") != words.end();
        return {request.options, nullptr, {}, endParsing(program, error, words), "trace diff"};
    }
}

} // namespace

std::string nameOf(const Request& request) {
    if (request.command == nullptr) return request.misused;
    const bool isComparison = request.command->kind == Command::Kind::prefix;
    return (request.options.trace ? "trace " : "") + fullName(*request.command) +
           (isComparison ? " diff" : "");
}

Words wordsOf(const Command& command) {
    if (command.group == nullptr) return {command.name};
    return {command.group->name, command.name};
}

HelpPage helpOf(const Command* command) {
    Request ignored;
    CLI::App program(programDescription, "appletctl");
    addCommandsTo(program, ignored);
    const CLI::App* app = &program;
    for (const std::string& word : command != nullptr ? wordsOf(*command) : Words{})
        app = app->get_subcommand(word);
    return helpPageOf(*app);
}

void addCommandsTo(CLI::App& program, Request& request, std::span<const Command* const> commands) {
    program.fallthrough();            // global options may also follow the command
    program.require_subcommand(0, 1); // another word of that name is an argument of the command
    program.set_help_flag("-h,--help", "Show this help");
    program.set_version_flag("--version", APPLETCTL_VERSION, "Show the version");
    addGlobalOptions(program, request.options);
    for (const Command* command : commands)
        addCommand(program, *command, request);
}

Request parseCommandLine(const Words& words, const Options& options,
                         std::span<const Command* const> commands) {
    Request request{.options = options, .command = nullptr, .words = {}, .outcome = {}};
    CLI::App program(programDescription, "appletctl");
    addCommandsTo(program, request, commands);
    try {
        program.parse(Words(words.rbegin(), words.rend()));
        if (request.command == nullptr)
            throw CLI::RequiredError(commandMissing(program), CLI::ExitCodes::RequiredError);
    } catch (const UsageError& error) {
        request.command = nullptr;
        request.misused = reachedName(program);
        request.outcome = failureReport("usage", error.what(), exitUsage);
    } catch (const CLI::ParseError& error) {
        request.command = nullptr;
        request.outcome = endParsing(program, error, words, commands);
        if (request.outcome.exitCode == exitUsage) request.misused = reachedName(program);
        // The exception does not say which options were read before it.
        request.options.json |= std::ranges::find(words, "--json") != words.end();
    }
    if (request.command == nullptr || request.command->kind != Command::Kind::prefix) return request;
    if (request.words.empty() || request.words.front() != "diff") return tracedRequest(request);
    return comparison(std::move(request));
}

} // namespace appletctl
