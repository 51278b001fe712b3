#include "appletctl/cli/help.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/layout.h"
#include "appletctl/base/terminal.h"
#include "appletctl/cli/command_tree.h"
#include "appletctl/cli/usage_errors.h"

#include <algorithm>
#include <sstream>

namespace appletctl {

const char* const accessWords =
    "Access: ro read-only, rw writable, rw+ writable while an acquisition runs as well.";

const ExitCodeMeaning exitCodes[6] = {
    {"0", "done"},
    {"1",
     "refused by the applet, a value that could not be read, something lost of a configuration file, a "
     "difference found by 'diff', a step of 'run' that failed, a condition of 'watch --fail-if' that holds, "
     "a finding of 'lint' or 'xml --check', an output that differs between board and applet ('route'), a "
     "picture that did not arrive ('grab'; with --strict any loss too), or a file that cannot be written"},
    {"2",
     "wrong usage: unknown command, option or parameter name, a file that cannot be read, or a value that "
     "the parameter's kind cannot hold. Nothing was set"},
    {"3", "the applet, the runtime, a library or a board is not available"},
    {"130", "interrupted"},
    {"141", "the reader of the output has closed it; 'watch' and 'run' keep their own code"},
};

const char* const boardNotes =
    "Without --board system and --station, each run starts a fresh virtual board with the "
    "defaults, and nothing is kept for the next "
    "run. With --board system, the start of the applet writes all defaults to the "
    "board, also for a command that only reads; --look "
    "opens the board without writing. The help of each command says what it does to the board.";

namespace {

constexpr const char* startWrites =
    "The start of the applet writes all defaults to the board, unless --look is given.";

/** Longer lines are hard to read. */
std::size_t helpWidth() {
    constexpr std::size_t usual = 80, most = 100;
    const std::size_t width = outputWidth();
    return width == unlimitedWidth ? usual : std::min(width, most);
}

/** Column of the explanations of options and commands. */
std::size_t helpColumn() { return helpWidth() < 60 ? 8 : 28; }

/** The text as lines; the first one starts with `begin`, the others are indented. */
std::string hanging(const std::string& begin, const std::string& text, std::size_t indent) {
    std::vector<std::string> words;
    std::istringstream rest(text);
    for (std::string word; rest >> word;)
        words.push_back(word);
    const std::size_t width = helpWidth();
    const std::vector<std::string> lines = foldedLines(join(words, " "), width - std::min(indent, width - 1));
    return begin + join(lines, '\n' + std::string(indent, ' ')) + '\n';
}

/** Folds lines and keeps their indentation; continuation lines are indented further. */
std::string foldedDetails(const std::string& text) {
    std::string folded;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t indent = std::min(line.find_first_not_of(' '), line.size());
        if (displayWidth(line) <= helpWidth())
            folded += line + '\n';
        else
            folded += hanging(std::string(indent, ' '), line.substr(indent), indent + 2);
    }
    return folded;
}

std::string entry(const std::string& name, const std::string& help) {
    constexpr std::size_t nameIndent = 6; // of the second line
    std::string begin = "  " + name;
    const std::size_t width = displayWidth(begin), column = helpColumn();
    if (width + 2 > column)
        begin = hanging("  ", name, nameIndent) + std::string(column, ' ');
    else
        begin += std::string(column - width, ' ');
    return hanging(begin, help, column);
}

std::string optionName(const CLI::Option& option) {
    std::string name = option.get_name(false, true);
    for (std::size_t comma = 0; (comma = name.find(',', comma)) != std::string::npos; ++comma)
        name.insert(comma + 1, " ");
    if (option.get_items_expected_max() == 0) return name;
    const std::vector<std::string> choices = choicesOf(option);
    if (!choices.empty()) return name + " " + join(choices, "|");
    const std::string type = option.get_type_name();
    return name + " " + type.substr(0, type.find(':'));
}

std::vector<HelpEntry> optionsOf(const CLI::App& app, bool withHelp) {
    std::vector<HelpEntry> options;
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_positional() || option->get_group().empty()) continue;
        if (!withHelp && option == app.get_help_ptr()) continue;
        options.push_back({optionName(*option), option->get_description()});
    }
    return options;
}

const CLI::App& programOf(const CLI::App& app) {
    return app.get_parent() == nullptr ? app : programOf(*app.get_parent());
}

std::string usageOf(const CLI::App& app, const Command* command) {
    std::string line = fullNameOf(app) + " [OPTIONS]";
    if (command == nullptr) return line + " COMMAND ...";
    if (command->form != nullptr) return line + ' ' + command->form;
    if (command->argument == nullptr) return line;
    const std::string word = command->argument;
    const bool isOptional = command->fewest == 0 && command->kind != Command::Kind::prefix;
    line += isOptional ? " [" + word + "]" : " " + word;
    return line + (command->most != 1 ? "..." : "");
}

constexpr Example firstSteps[] = {
    {"list linetrigger", "the parameters of the line trigger, with values and limits"},
    {"set FG_WIDTH=2048 FG_XOFFSET=64", "set two parameters, in this order"},
    {"why FG_WIDTH=20000", "why a value is refused, and what to do"},
    {"save line1.mcf FG_WIDTH=2048", "a configuration file of the defaults and this value"},
    {"shell", "several commands on one board"},
};

/** For a command its own examples, for a group the first one of each of its commands. */
std::vector<HelpEntry> examplesOf(const CLI::App& app, const Command* command) {
    std::vector<HelpEntry> examples;
    const bool isOfShell = command != nullptr && command->kind == Command::Kind::ofShell;
    const std::string program = isOfShell ? "" : "appletctl ";
    const auto add = [&](const Example& example) {
        if (example.line != nullptr) examples.push_back({program + example.line, example.help});
    };
    if (command != nullptr)
        std::ranges::for_each(command->examples, add);
    else if (app.get_parent() == nullptr)
        std::ranges::for_each(firstSteps, add);
    else
        for (const CLI::App* below : app.get_subcommands(nullptr))
            if (const Command* one = commandOf(*below); one != nullptr) add(one->examples[0]);
    return examples;
}

bool opensNoBoard(const Command& command) {
    return command.withoutBoard != nullptr && *command.withoutBoard == '\0';
}

/** What the command sets on a real board. */
std::string settingsOnBoard(const Command& command) {
    if (command.kind == Command::Kind::session && command.sets == Command::Sets::always)
        return "its steps set values, all after one question or with --yes";
    const bool hasCommands = command.kind == Command::Kind::local;
    std::string alone =
        hasCommands ? "each of its commands does what it does alone" : "the command itself only reads";
    switch (command.sets) {
    case Command::Sets::nothing:
        return alone;
    case Command::Sets::assignments:
        return alone + "; assignments among its words are set, after a question or with --yes";
    case Command::Sets::always:
    case Command::Sets::afterOwnQuestion:
        return "it sets values, after a question or with --yes";
    }
    return "";
}

/** The command's effect on a real board, apart from the defaults that the start of the applet writes. */
std::string effectOnBoard(const Command& command) {
    if (command.isForVirtualBoard) return "It refuses a board that is not virtual, and writes nothing to it.";
    if (opensNoBoard(command)) return "It opens no board.";
    std::string effect = "On a board of the system " + settingsOnBoard(command) + ".";
    if (command.withoutBoard == nullptr) return effect;
    return effect + " It opens none " + command.withoutBoard + ".";
}

std::vector<HelpEntry> commandEntries(const CLI::App& app) {
    std::vector<HelpEntry> entries;
    for (const CLI::App* below : app.get_subcommands(nullptr))
        if (!below->get_group().empty()) entries.push_back({below->get_name(), below->get_description()});
    return entries;
}

/** The entries below their title; empty if there are none. */
std::string section(const char* title, const std::vector<HelpEntry>& entries) {
    std::string text;
    for (const HelpEntry& one : entries)
        text += entry(one.name, one.text);
    return text.empty() ? "" : title + text + '\n';
}

} // namespace

HelpPage helpPageOf(const CLI::App& app) {
    const Command* command = commandOf(app);
    HelpPage page;
    page.description = app.get_description() + (command != nullptr ? "." : "");
    page.examples = examplesOf(app, command);
    page.usage = usageOf(app, command);
    const bool isProgram = app.get_parent() == nullptr;
    page.options = optionsOf(app, isProgram);
    if (!isProgram) page.commonOptions = optionsOf(programOf(app), true);
    if (command == nullptr) {
        page.commands = commandEntries(app);
        return page;
    }
    if (command->argument != nullptr) page.words = {{command->argument, command->argumentHelp}};
    if (command->moreHelp != nullptr) page.details = command->moreHelp();
    if (isHidden(*command)) return page;
    page.effect = effectOnBoard(*command);
    page.startsOnSystem = !opensNoBoard(*command) && !command->isForVirtualBoard &&
                          command->kind != Command::Kind::ofShell; // the shell has started it
    return page;
}

HelpPage comparisonHelp(const CLI::App& program) {
    HelpPage page;
    page.description = "Compare the accesses in two files that 'trace' has written.";
    page.examples = {{"appletctl trace diff before.txt after.txt", "what only one of them has"}};
    page.usage = program.get_name() + " [OPTIONS] FILE FILE";
    page.words = {{"FILE", "Output of 'trace', as text or as JSON"}};
    page.commonOptions = optionsOf(program, true);
    page.effect = "It opens no board.";
    return page;
}

std::string helpText(const HelpPage& page) {
    constexpr std::size_t exitCodeIndent = 7;
    std::string text = hanging("", page.description, 0) + '\n';
    if (!page.examples.empty()) text += "Examples:\n";
    for (const HelpEntry& example : page.examples)
        text += hanging("  ", example.name, 6) + hanging("      ", example.text, 6);
    if (!page.examples.empty()) text += '\n';
    text += "Usage: " + page.usage + "\n\n" + section("Commands:\n", page.commands) +
            section("Words:\n", page.words);
    if (!page.details.empty()) text += foldedDetails(page.details) + '\n';
    text += section("Options:\n", page.options) + section("Options of all commands:\n", page.commonOptions);
    if (!page.effect.empty())
        text += hanging("", page.effect + (page.startsOnSystem ? std::string(" ") + startWrites : ""), 0);
    if (page.commands.empty()) return text;
    const std::string name = page.usage.substr(0, page.usage.find(" ["));
    text += hanging("", boardNotes, 0) + hanging("", accessWords, 0) + "\nExit codes:\n";
    for (const ExitCodeMeaning& one : exitCodes) {
        const std::string code = std::string("  ") + one.code;
        text += hanging(code + std::string(exitCodeIndent - code.size(), ' '), one.meaning, exitCodeIndent);
    }
    return text + '\n' +
           hanging("", "'" + name + " COMMAND --help' shows examples and options of a command.", 0);
}

std::string shellHelp() {
    std::string commands, own;
    for (const Command* command : shellCommands()) {
        const bool isOfShell = command->kind == Command::Kind::ofShell;
        if (isForLines(*command) && !isHidden(*command))
            (isOfShell ? own : commands) += entry(fullName(*command), command->help);
    }
    return "Each line is a command with its words, on one board:\n\n" + commands +
           "\nOf the shell itself:\n" + own + '\n' + hanging("", accessWords, 0);
}

namespace {

Report showHelp(Context& context, const Words& words) {
    Report report;
    const Command* found = nullptr;
    const std::string name = join(words, " ");
    for (const Command* command : context.program().commands)
        if (fullName(*command) == name) found = command;
    const bool isOtherPage = name == "trace diff" || (words.size() == 1 && groupNamed(name) != nullptr);
    if (!words.empty() && found == nullptr && !isOtherPage)
        throw UsageError(
            "there is no command " + inQuotedWord(name) +
            commandSuggestion(context.program().commands, groupNamed(words.front()), words.back()));
    Words asked = words;
    asked.emplace_back("--help");
    report.text =
        isOtherPage ? parseCommandLine(asked).outcome.text : helpText(context.program().helpOf(found));
    report.document["text"] = report.text;
    return report;
}

} // namespace

extern const Command helpCommand;
const Command helpCommand = {
    .name = "help",
    .help = "Show examples, words and options of a command",
    .argument = "COMMAND",
    .argumentHelp = "The command; without it, all are listed",
    .examples = {{"help set", "how values are set"}},
    .most = 2,
    .run = showHelp,
    .kind = Command::Kind::local, // the shell has a "help" of its own
    .withoutBoard = "",
};

} // namespace appletctl
