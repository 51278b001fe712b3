#include "appletctl/cli/help.h"

#include "applet_tools/base/text.h"
#include "appletctl/base/layout.h"
#include "appletctl/base/output.h"

#include <algorithm>
#include <sstream>

namespace appletctl {

const char* const accessWords =
    "Access: ro read-only, rw writable, rw+ writable while an acquisition runs as well.";

const ExitCodeMeaning exitCodes[5] = {
    {"0", "done"},
    {"1",
     "refused by the applet, a value that could not be read, something lost of a configuration file, a "
     "difference found by 'diff', a step of 'run' that failed, a condition of 'watch --fail-if' that holds, "
     "a finding of 'lint' or 'xml --check', an output that the board holds otherwise than the applet "
     "('route'), a picture that did not come ('grab'; with --strict any loss too), or a file that cannot be "
     "written"},
    {"2",
     "wrong usage: unknown command, option or parameter name, a file that cannot be read, or a value that "
     "the parameter's kind cannot hold. Nothing was set"},
    {"3", "the applet, the runtime, a library or a board is not to be had"},
    {"130", "interrupted"},
};

const char* const boardNotes =
    "Without --board system and --station, each run starts a fresh virtual board with the "
    "defaults, and nothing is kept for the next "
    "run. With --board system, the start of the applet writes all defaults to the "
    "board, for every command; --look "
    "opens the board without writing.";

namespace {

constexpr const char* startWrites =
    "The start of the applet writes all defaults to it, unless --look is given.";

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

std::string fullNameOf(const CLI::App& app) {
    const CLI::App* parent = app.get_parent();
    return parent == nullptr ? app.get_name() : fullNameOf(*parent) + " " + app.get_name();
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
    const auto add = [&](const Example& example) {
        if (example.line != nullptr)
            examples.push_back({"appletctl " + std::string(example.line), example.help});
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

/** The command's effect on a real board, apart from the defaults that the start of the applet writes. */
std::string effectOnBoard(const Command& command) {
    if (command.kind == Command::Kind::session && command.sets == Command::Sets::always)
        return "On a board of the system its steps set values, all after one question or with --yes.";
    if (command.kind != Command::Kind::plain)
        return "On a board of the system each of its commands does what it does alone.";
    switch (command.sets) {
    case Command::Sets::nothing:
        return "On a board of the system the command itself only reads.";
    case Command::Sets::assignments:
        return "On a board of the system the command itself only reads, but assignments among its words are "
               "set, after a question or with --yes.";
    case Command::Sets::always:
        return "On a board of the system it sets values, after a question or with --yes.";
    case Command::Sets::afterOwnQuestion:
        return "It sets values, after a question or with --yes.";
    }
    return "";
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

std::string argumentName(const Command& command) { return "'" + fullName(command) + "'"; }

std::string seeHelp(const std::string& name) { return "; '" + name + " --help' shows the usage"; }

/** The largest editDistance of a misspelt word of the command line. */
std::size_t mostTypos(std::string_view word) { return std::min<std::size_t>(2, farthestTypo(word)); }

/** The error for an assignment where the command takes none; empty for another word, and if it has no --with. */
std::string assignmentError(const Command& command, const std::string& word) {
    const std::size_t sign = word.find('=');
    if (!command.showsValues || sign == 0 || sign == std::string::npos) return "";
    return argumentName(command) + " takes no assignments, and there is " + inQuotedWord(word) +
           "; with --with before it the answer is as if it were set, and 'appletctl set' sets it";
}

/** The option of the command, or of those above it, that is most similar to the word; empty if none is. */
std::string nearestOption(const CLI::App& app, const std::string& word) {
    constexpr std::size_t dashes = 2;
    std::string nearest;
    std::size_t least = mostTypos(word.substr(std::min(dashes, word.size()))) + 1;
    for (const CLI::App* one = &app; one != nullptr; one = one->get_parent())
        for (const CLI::Option* option : one->get_options())
            for (const std::string& name : option->get_lnames())
                if (const std::size_t distance = editDistance(word, "--" + name); distance < least) {
                    least = distance;
                    nearest = "--" + name;
                }
    return nearest;
}

Words splitAtCommas(const std::string& text) {
    Words values;
    std::istringstream list(text);
    for (std::string value; std::getline(list, value, ',');)
        values.push_back(value);
    return values;
}

const CommandGroup* groupNamed(const std::string& name) {
    for (const Command* command : allCommands())
        if (command->group != nullptr && command->group->name == name) return command->group;
    return nullptr;
}

} // namespace

const Command* commandOf(const CLI::App& app) {
    const CLI::App* parent = app.get_parent();
    if (parent == nullptr) return nullptr;
    const CommandGroup* group = parent->get_parent() != nullptr ? groupNamed(parent->get_name()) : nullptr;
    for (const Command* command : allCommands())
        if (command->group == group && app.get_name() == command->name) return command;
    return nullptr;
}

std::vector<std::string> choicesOf(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    const std::size_t begin = type.find('{'), end = type.find('}');
    if (begin == std::string::npos || end == std::string::npos) return {};
    return splitAtCommas(type.substr(begin + 1, end - begin - 1));
}

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
    if (!isHidden(*command)) page.effect = effectOnBoard(*command);
    return page;
}

HelpPage comparisonHelp(const CLI::App& program) {
    HelpPage page;
    page.description = "Compare the accesses in two files that 'trace' has written.";
    page.examples = {{"appletctl trace diff before.txt after.txt", "what only one of them has"}};
    page.usage = program.get_name() + " [OPTIONS] FILE FILE";
    page.words = {{"FILE", "Output of 'trace', as text or as JSON"}};
    page.commonOptions = optionsOf(program, true);
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
    if (!page.effect.empty()) text += hanging("", page.effect + ' ' + startWrites, 0);
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

namespace {

struct ShellWord {
    Words words;
    const char *shown, *help;
};

const ShellWord shellWords[] = {
    {{"undo"}, "undo", "Take back what the last command that changed something has changed"},
    {{"help"}, "help [COMMAND]", "This list, or examples and options of a command"},
    {{"exit", "quit"}, "exit, quit", "End the shell; so does the end of the input"},
};

} // namespace

std::string shellWordHelp(const std::string& word) {
    for (const ShellWord& one : shellWords)
        if (std::ranges::find(one.words, word) != one.words.end()) return entry(one.shown, one.help);
    return "";
}

std::string shellHelp() {
    std::string text = "Each line is a command with its words, on one board:\n\n";
    for (const Command* command : allCommands())
        if (isForLines(*command) && !isHidden(*command)) text += entry(fullName(*command), command->help);
    text += "\nOf the shell itself:\n";
    for (const ShellWord& one : shellWords)
        text += entry(one.shown, one.help);
    return text + '\n' + hanging("", accessWords, 0);
}

std::string commandSuggestion(const CommandGroup* group, const std::string& word) {
    for (std::size_t distance = 0; distance <= mostTypos(word); ++distance)
        for (const Command* command : allCommands()) {
            const bool isCandidate = !isHidden(*command) && (group == nullptr || command->group == group);
            if (isCandidate && editDistance(word, command->name) == distance)
                return "; did you mean '" + fullName(*command) + "'?";
            const bool isInOther = group == nullptr && command->group != nullptr;
            if (isInOther && editDistance(word, command->group->name) == distance)
                return std::string("; did you mean '") + command->group->name + "'?";
        }
    if (group == nullptr) return "; 'appletctl --help' lists the commands";
    std::vector<std::string> names;
    for (const Command* command : allCommands())
        if (command->group == group) names.emplace_back(command->name);
    return "; there are " + join(names, ", ");
}

namespace {

/** The text between the two; empty if they do not occur. */
std::string between(const std::string& text, const std::string& from, const std::string& to) {
    const std::size_t begin = text.find(from);
    if (begin == std::string::npos) return "";
    const std::size_t end = text.find(to, begin + from.size());
    return end == std::string::npos ? "" : text.substr(begin + from.size(), end - begin - from.size());
}

/** The short words among an option's choices that differ from the word by a letter or two. */
Words misspelt(const std::string& word, const Words& choices) {
    constexpr std::size_t lettersOfOne = 4;
    const std::size_t farthest = std::max<std::size_t>(1, word.size() / lettersOfOne);
    Words near;
    for (const std::string& choice : choices)
        if (!word.empty() && editDistance(word, choice) <= farthest) near.push_back(choice);
    return near;
}

/** The short name of the option if the words use that one. */
std::string asTyped(const CLI::App& app, const std::string& option, const Words& words) {
    const CLI::Option* found = app.get_option_no_throw(option);
    if (found == nullptr) return option;
    const auto has = [&](const std::string& name) {
        return std::ranges::any_of(words, [&](const std::string& word) { return word.starts_with(name); });
    };
    for (const std::string& letter : found->get_snames())
        if (has("-" + letter) && !has(option)) return "-" + letter;
    return option;
}

/** The node that an unknown word precedes on the command line, so that it is in the place of a command; null if it
 *  follows the command. */
const CLI::App* nodeBehind(const CLI::App& app, const std::string& word, const Words& words) {
    const CLI::App* found = nullptr;
    for (const CLI::App* node = &app; node->get_parent() != nullptr; node = node->get_parent())
        if (std::ranges::find(words, word) < std::ranges::find(words, node->get_name())) found = node;
    return word.starts_with('-') ? nullptr : found;
}

std::string unknownCommand(const CommandGroup* group, const std::string& word) {
    const std::string above = group != nullptr ? std::string(group->name) + " " : "";
    return "there is no command " + inQuotedWord(above + word) + commandSuggestion(group, word);
}

/** The error in an option's value, in this program's words; empty if it is unknown. The text is
 *  "--interval: Value 0 not in range 1 to 86400000" or the like. */
std::string optionError(const CLI::App& app, const CLI::ParseError& error, const Words& words) {
    const std::string text = error.what();
    const std::size_t colon = text.find(':');
    const std::string option = asTyped(app, text.substr(0, colon), words);
    const std::string number = between(text, "Could not convert: ", " = ");
    if (!number.empty())
        return number + " takes a number, and " + inQuotedWord(text.substr(text.find(" = ") + 3)) +
               " is none";
    if (colon == std::string::npos) return "";
    const std::string behind = text.substr(colon + 1);
    if (behind.find(" not in {") != std::string::npos) {
        const std::string word = between(behind, " ", " not in {");
        std::string choices = between(behind, "{", "}");
        const Words known = splitAtCommas(choices);
        for (std::size_t comma = 0; (comma = choices.find(',', comma)) != std::string::npos; ++comma)
            choices.insert(comma + 1, " ");
        return option + " takes one of " + choices + ", and " + inQuotedWord(word) + " is none" +
               didYouMean(misspelt(word, known));
    }
    const std::string outside = " not in range ";
    if (const std::size_t place = behind.find(outside); place != std::string::npos)
        return option + " takes a number from " + behind.substr(place + outside.size()) + ", and " +
               inQuotedWord(between(behind, "Value ", outside)) + " is none";
    if (behind.find("required") != std::string::npos && behind.find("missing") != std::string::npos)
        return option + ": its value is missing";
    if (behind.find("At Most 1") != std::string::npos) return option + " takes one value, and there are more";
    return "";
}

} // namespace

std::string usageError(const CLI::App& program, const CLI::App& app, const CLI::ParseError& error,
                       const Words& words) {
    const std::vector<std::string> unknown = program.remaining(true);
    const std::string name = fullNameOf(app);
    if (!unknown.empty()) {
        const std::string& word = unknown.front();
        if (const CLI::App* node = nodeBehind(app, word, words))
            return unknownCommand(groupNamed(node->get_parent()->get_name()), word);
        if (word.size() > 1 && word.starts_with('-')) {
            const std::string option = word.substr(0, word.find('='));
            const Command* command = commandOf(app);
            if (command != nullptr &&
                app.get_option_no_throw(option) != nullptr) // only unknown before the command
                return inQuotedWord(option) + " is an option of " + argumentName(*command) +
                       ": give it behind the command";
            const std::string nearest = nearestOption(app, option);
            return "there is no option " + inQuotedWord(option) +
                   (nearest.empty() ? seeHelp(name) : "; did you mean '" + nearest + "'?");
        }
        const Command* command = commandOf(app);
        if (command == nullptr) return unknownCommand(groupNamed(app.get_name()), word);
        if (std::string own = assignmentError(*command, word); !own.empty()) return own;
        return argumentName(*command) + " takes " +
               (command->argument != nullptr ? "no more words" : "no words") + ", and there is " +
               inQuotedWord(word) + seeHelp(name);
    }
    std::string own = optionError(app, error, words);
    if (own.ends_with('?')) return own; // already includes a suggestion
    return (own.empty() ? printable(error.what()) : own) + seeHelp(name);
}

void checkWords(const Command& command, const Words& words) {
    const int count = static_cast<int>(words.size());
    const std::string help = seeHelp("appletctl " + fullName(command));
    if (count < command.fewest)
        throw UsageError(argumentName(command) + ": " + command.argument + " is missing" + help);
    if (command.most >= 0 && count > command.most)
        throw UsageError(argumentName(command) + " takes one " + command.argument + ", and there is " +
                         inQuotedWord(words[static_cast<std::size_t>(command.most)]) + " as well" + help);
    if (kindOf(command) != "PATTERN") return;
    for (const std::string& word : words)
        if (const std::string error = assignmentError(command, word); !error.empty()) throw UsageError(error);
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
        throw UsageError("there is no command " + inQuotedWord(name) +
                         commandSuggestion(groupNamed(words.front()), words.back()));
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
};

} // namespace appletctl
