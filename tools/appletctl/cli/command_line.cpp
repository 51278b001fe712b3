#include "appletctl/cli/command_line.h"

#include "appletctl/base/text.h"

#include <algorithm>
#include <sstream>
#include <string_view>

namespace appletctl {
namespace {

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
    const bool isOfAnother = command.kind == Command::Kind::prefix; // its words are another command line's
    if (command.argument != nullptr && !isOfAnother) {
        CLI::Option* words = added->add_option(command.argument, request.words, command.argumentHelp);
        words->expected(command.fewest,
                        command.most < 0 ? CLI::detail::expected_max_vector_size : command.most);
        words->required(command.fewest > 0);
    }
    if (isOfAnother) added->prefix_command()->fallthrough(false); // their options too
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
    program.add_flag("-v,--verbose", options.verbose, "Say more on the error output");
}

/** The command that the user may have meant; empty if none is near. */
std::string didYouMean(const std::string& word) {
    for (const std::size_t distance : {0u, 1u, 2u})
        for (const Command* command : allCommands())
            if (editDistance(word, command->name) == distance)
                return "; did you mean '" + fullName(*command) + "'?";
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

/** The request of the command behind "trace"; its own options go before those that stood in front of it. */
Request tracedRequest(const Request& trace) {
    Request request = parseCommandLine(trace.words, trace.options);
    if (request.command != nullptr && request.command->kind == Command::Kind::prefix)
        return {
            trace.options, nullptr, {}, failureReport("usage", "'trace' stands behind 'trace'", exitUsage)};
    request.options.trace = true;
    return request;
}

} // namespace

std::string nameOf(const Request& request) {
    if (request.command == nullptr) return "";
    return (request.options.trace ? "trace " : "") + fullName(*request.command);
}

Words wordsOf(const Command& command) {
    if (command.group == nullptr) return {command.name};
    return {command.group->name, command.name};
}

std::string helpOf(const Command* command) {
    Words words = command != nullptr ? wordsOf(*command) : Words{};
    words.emplace_back("--help");
    return parseCommandLine(words).outcome.text;
}

void addCommandsTo(CLI::App& program, Request& request) {
    program.fallthrough();            // global options may stand behind the command as well
    program.require_subcommand(0, 1); // a further word of that name is the command's own
    program.footer(notes);
    program.set_version_flag("--version", APPLETCTL_VERSION);
    addGlobalOptions(program, request.options);
    for (const Command* command : allCommands())
        addCommand(program, *command, request);
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
    if (request.command == nullptr || request.command->kind != Command::Kind::prefix) return request;
    if (request.words.empty() || request.words.front() != "diff") return tracedRequest(request);
    request.words.erase(request.words.begin());
    return request;
}

} // namespace appletctl
