#include "appletctl/cli/usage_errors.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
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

/** The words among an option's choices that may have been meant. */
Words misspelt(const std::string& word, const Words& choices) {
    Words near;
    for (const std::string& choice : choices)
        if (!word.empty() && editDistance(word, choice) <= mostTypos(word)) near.push_back(choice);
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
const CLI::App* nodeAfter(const CLI::App& app, const std::string& word, const Words& words) {
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

/** A number as CLI11 writes the limits of a range, "0.001000", without the zeros. */
std::string limitText(const std::string& limit) {
    const auto number = floatingNumber(limit);
    return number ? numberText(*number) : limit;
}

/** The texts at the asterisks of a pattern that the text matches, each as short as possible; empty if it does not. */
Words matched(const std::string& text, std::string_view pattern) {
    Words found;
    std::size_t position = 0;
    while (!pattern.empty()) {
        const bool isAny = pattern.front() == '*';
        if (isAny) pattern.remove_prefix(1);
        const std::string_view fixed = pattern.substr(0, pattern.find('*'));
        pattern.remove_prefix(fixed.size());
        const std::size_t end = isAny && fixed.empty() ? text.size() : text.find(fixed, position);
        if (end == std::string::npos || (!isAny && end != position)) return {};
        if (isAny) found.push_back(text.substr(position, end - position));
        position = end + fixed.size();
    }
    return found;
}

/** A message of CLI11 about the value of an option, and this program's. */
struct ValueMessage {
    const char* pattern; /**< the first asterisk is the option */
    std::string (*inOwnWords)(const Words& parts);
};

// CLI11 tells the option, the refused value and what is accepted only within its messages.
constexpr ValueMessage valueMessages[] = {
    {"Could not convert: * = *",
     [](const Words& parts) { return ": " + inQuotedWord(parts[1]) + " is not a number"; }},
    {"*: Value * not in range * to *",
     [](const Words& parts) {
         return ": " + inQuotedWord(parts[1]) + " is not a number from " + limitText(parts[2]) + " to " +
                limitText(parts[3]);
     }},
    {"*: * not in {*",
     [](const Words& parts) {
         const Words choices = choicesIn("{" + parts[2]);
         return ": " + inQuotedWord(parts[1]) + " is not one of " + join(choices, ", ") +
                didYouMean(misspelt(parts[1], choices));
     }},
    {"*: * required * missing", [](const Words&) { return std::string(": its value is missing"); }},
    {"*: At Most 1 *", [](const Words&) { return std::string(" takes one value, and there are more"); }},
};

/** The error in an option's value, in this program's words; CLI11's message if it is none of these. */
std::string valueError(const CLI::App& app, const CLI::ParseError& error, const Words& words) {
    for (const ValueMessage& message : valueMessages)
        if (const Words parts = matched(error.what(), message.pattern); !parts.empty())
            return asTyped(app, parts.front(), words) + message.inOwnWords(parts);
    return printable(error.what());
}

std::string unknownOption(const CLI::App& app, const std::string& option) {
    const Command* command = commandOf(app);
    if (command != nullptr && app.get_option_no_throw(option) != nullptr) // only unknown before the command
        return inQuotedWord(option) + " is an option of " + argumentName(*command) +
               ": give it after the command";
    const std::string nearest = nearestOption(app, option);
    return "there is no option " + inQuotedWord(option) +
           (nearest.empty() ? seeHelp(fullNameOf(app)) : "; did you mean '" + nearest + "'?");
}

/** The error for a word that nothing on the command line takes. */
std::string unknownWord(const CLI::App& app, const std::string& word, const Words& words,
                        std::span<const Command* const> commands) {
    if (const CLI::App* node = nodeAfter(app, word, words))
        return unknownCommand(commands, groupNamed(node->get_parent()->get_name()), word);
    if (word.size() > 1 && word.starts_with('-')) return unknownOption(app, word.substr(0, word.find('=')));
    const Command* command = commandOf(app);
    if (command == nullptr) return unknownCommand(commands, groupNamed(app.get_name()), word);
    if (std::string error = assignmentError(*command, word); !error.empty()) return error;
    return argumentName(*command) + " takes " +
           (command->argument != nullptr ? "no more words" : "no words") + ", and there is " +
           inQuotedWord(word) + seeHelp(fullNameOf(app));
}

} // namespace

std::string usageError(const CLI::App& program, const CLI::App& app, const CLI::ParseError& error,
                       const Words& words, std::span<const Command* const> commands) {
    const std::vector<std::string> unknown = program.remaining(true);
    if (!unknown.empty()) return unknownWord(app, unknown.front(), words, commands);
    const std::string text = valueError(app, error, words);
    const bool hasSuggestion = text.ends_with('?');
    return hasSuggestion ? text : text + seeHelp(fullNameOf(app));
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
