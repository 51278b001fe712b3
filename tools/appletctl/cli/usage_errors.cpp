#include "appletctl/cli/usage_errors.h"

#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/output.h"
#include "appletctl/cli/command_tree.h"
#include "appletctl/cli/registry.h"

#include <algorithm>

namespace appletctl {

std::size_t mostTypos(std::string_view word) { return std::min<std::size_t>(2, farthestTypo(word)); }

namespace {

std::string argumentName(const Command& command) { return "'" + fullName(command) + "'"; }

std::string seeHelp(const std::string& name) { return "; '" + name + " --help' shows the usage"; }

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

bool isOfShell(const Command* command) { return command->kind == Command::Kind::ofShell; }

/** Where the commands are listed, or that the word is one of the shell. */
std::string listReference(std::span<const Command* const> commands, const std::string& word) {
    if (std::ranges::any_of(commands, isOfShell)) return "; 'help' lists the commands";
    for (const Command* command : shellCommands())
        if (isOfShell(command) && editDistance(word, command->name) <= mostTypos(word))
            return std::string("; '") + command->name +
                   "' is a word of the shell: 'appletctl shell' starts one";
    return "; 'appletctl --help' lists the commands";
}

} // namespace

std::string commandSuggestion(std::span<const Command* const> commands, const CommandGroup* group,
                              const std::string& word) {
    for (std::size_t distance = 0; distance <= mostTypos(word); ++distance)
        for (const Command* command : commands) {
            const bool isCandidate = !isHidden(*command) && (group == nullptr || command->group == group);
            if (isCandidate && editDistance(word, command->name) == distance)
                return "; did you mean '" + fullName(*command) + "'?";
            const bool isInOther = group == nullptr && command->group != nullptr;
            if (isInOther && editDistance(word, command->group->name) == distance)
                return std::string("; did you mean '") + command->group->name + "'?";
        }
    if (group == nullptr) return listReference(commands, word);
    std::vector<std::string> names;
    for (const Command* command : commands)
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

/** The node that an unknown word precedes on the command line, so that it is in the position of a command; null if it
 *  follows the command. */
const CLI::App* nodeBehind(const CLI::App& app, const std::string& word, const Words& words) {
    const CLI::App* found = nullptr;
    for (const CLI::App* node = &app; node->get_parent() != nullptr; node = node->get_parent())
        if (std::ranges::find(words, word) < std::ranges::find(words, node->get_name())) found = node;
    return word.starts_with('-') ? nullptr : found;
}

std::string unknownCommand(std::span<const Command* const> commands, const CommandGroup* group,
                           const std::string& word) {
    const std::string above = group != nullptr ? std::string(group->name) + " " : "";
    return "there is no command " + inQuotedWord(above + word) + commandSuggestion(commands, group, word);
}

/** "0.001000 to 1000.000000" without the zeros. */
std::string rangeText(const std::string& range) {
    const std::string word = " to ";
    const std::size_t position = range.find(word);
    if (position == std::string::npos) return range;
    const auto least = floatingNumber(range.substr(0, position)),
               most = floatingNumber(range.substr(position + word.size()));
    return least && most ? numberText(*least) + word + numberText(*most) : range;
}

/** The error in an option's value, in this program's words; empty if it is unknown. The text is
 *  "--interval: Value 0 not in range 1 to 86400000" or the like. */
std::string optionError(const CLI::App& app, const CLI::ParseError& error, const Words& words) {
    const std::string text = error.what();
    const std::size_t colon = text.find(':');
    const std::string option = asTyped(app, text.substr(0, colon), words);
    const std::string number = between(text, "Could not convert: ", " = ");
    if (!number.empty())
        return number + ": " + inQuotedWord(text.substr(text.find(" = ") + 3)) + " is not a number";
    if (colon == std::string::npos) return "";
    const std::string behind = text.substr(colon + 1);
    if (behind.find(" not in {") != std::string::npos) {
        const std::string word = between(behind, " ", " not in {");
        const Words choices = choicesIn(behind);
        return option + ": " + inQuotedWord(word) + " is not one of " + join(choices, ", ") +
               didYouMean(misspelt(word, choices));
    }
    const std::string outside = " not in range ";
    if (const std::size_t position = behind.find(outside); position != std::string::npos)
        return option + ": " + inQuotedWord(between(behind, "Value ", outside)) + " is not a number from " +
               rangeText(behind.substr(position + outside.size()));
    if (behind.find("required") != std::string::npos && behind.find("missing") != std::string::npos)
        return option + ": its value is missing";
    if (behind.find("At Most 1") != std::string::npos) return option + " takes one value, and there are more";
    return "";
}

} // namespace

std::string usageError(const CLI::App& program, const CLI::App& app, const CLI::ParseError& error,
                       const Words& words, std::span<const Command* const> commands) {
    const std::vector<std::string> unknown = program.remaining(true);
    const std::string name = fullNameOf(app);
    if (!unknown.empty()) {
        const std::string& word = unknown.front();
        if (const CLI::App* node = nodeBehind(app, word, words))
            return unknownCommand(commands, groupNamed(node->get_parent()->get_name()), word);
        if (word.size() > 1 && word.starts_with('-')) {
            const std::string option = word.substr(0, word.find('='));
            const Command* command = commandOf(app);
            if (command != nullptr &&
                app.get_option_no_throw(option) != nullptr) // only unknown before the command
                return inQuotedWord(option) + " is an option of " + argumentName(*command) +
                       ": give it after the command";
            const std::string nearest = nearestOption(app, option);
            return "there is no option " + inQuotedWord(option) +
                   (nearest.empty() ? seeHelp(name) : "; did you mean '" + nearest + "'?");
        }
        const Command* command = commandOf(app);
        if (command == nullptr) return unknownCommand(commands, groupNamed(app.get_name()), word);
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
    const std::string help = seeHelp(calledName(command));
    if (count < command.fewest)
        throw UsageError(argumentName(command) + ": " + command.argument + " is missing" + help);
    if (command.most >= 0 && count > command.most)
        throw UsageError(argumentName(command) + " takes one " + command.argument + ", and there is " +
                         inQuotedWord(words[static_cast<std::size_t>(command.most)]) + " as well" + help);
    if (kindOf(command) != "PATTERN") return;
    for (const std::string& word : words)
        if (const std::string error = assignmentError(command, word); !error.empty()) throw UsageError(error);
}

} // namespace appletctl
