#include "appletctl/cli/candidates.h"

#include "appletctl/applet/published_limits.h"
#include "appletctl/base/text.h"
#include "appletctl/cli/command_line.h"

#include <algorithm>
#include <sstream>

namespace appletctl {
namespace {

using Candidates = std::vector<Candidate>;

/** The values that an option or an argument takes, if there is a list: its help shows it as {a,b,c}. */
std::vector<std::string> valuesOf(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    const std::size_t begin = type.find('{'), end = type.find('}');
    if (begin == std::string::npos || end == std::string::npos) return {};
    std::vector<std::string> values;
    std::istringstream list(type.substr(begin + 1, end - begin - 1));
    for (std::string value; std::getline(list, value, ',');)
        values.push_back(value);
    return values;
}

bool takesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

/** Where in a command line the words up to the last one lead. */
struct Place {
    const CLI::App* command;             // the one that the last word belongs to
    const CLI::Option* option = nullptr; // the last word is its value
    int arguments = 0;                   // of the command, before the last word
    std::ptrdiff_t begin = 0;            // where the words behind the command begin
    bool hasOptions = true;              // not behind a --
};

const CLI::Option* optionOf(const CLI::App* command, const std::string& name) {
    for (; command != nullptr; command = command->get_parent())
        if (const CLI::Option* option = command->get_option_no_throw(name)) return option;
    return nullptr;
}

const CLI::App* subcommandOf(const CLI::App& command, const std::string& name) {
    for (const CLI::App* one : command.get_subcommands(nullptr))
        if (one->get_name() == name) return one;
    return nullptr;
}

Place placeOf(const CLI::App& program, const Words& words) {
    Place place{.command = &program};
    for (std::size_t i = 0; i + 1 < words.size(); ++i) {
        const std::string& word = words[i];
        if (place.option != nullptr) {
            place.option = nullptr;
        } else if (place.hasOptions && word == "--") {
            place.hasOptions = false;
        } else if (place.hasOptions && word.starts_with('-') && word.size() > 1) {
            const CLI::Option* option = optionOf(place.command, word);
            if (option != nullptr && takesValue(*option)) place.option = option;
        } else if (const CLI::App* command =
                       place.arguments == 0 ? subcommandOf(*place.command, word) : nullptr) {
            place.command = command;
            place.begin = static_cast<std::ptrdiff_t>(i) + 1;
        } else {
            ++place.arguments;
        }
    }
    return place;
}

Candidates matching(const Candidates& all, const std::string& begin) {
    Candidates found;
    std::ranges::copy_if(all, std::back_inserter(found),
                         [&](const Candidate& one) { return one.text.starts_with(begin); });
    return found;
}

Candidates optionsOf(const CLI::App* command) {
    Candidates found;
    for (; command != nullptr; command = command->get_parent())
        for (const CLI::Option* option : command->get_options())
            for (const std::string& name : option->get_lnames())
                found.push_back({"--" + name, option->get_description()});
    return found;
}

Candidates valuesOfOption(const CLI::Option& option, const std::string& before = "") {
    Candidates found;
    for (const std::string& value : valuesOf(option))
        found.push_back({before + value});
    return found;
}

Candidates commandsOf(const CLI::App& command) {
    Candidates found;
    for (const CLI::App* one : command.get_subcommands(nullptr))
        if (!one->get_group().empty()) found.push_back({one->get_name(), one->get_description()});
    return found;
}

/** The name as its beginning was typed, with the prefix or without; empty if it begins otherwise. */
std::string nameAsTyped(const std::string& name, const std::string& begin) {
    const std::string typed = lowerCase(begin), lower = lowerCase(name);
    constexpr std::string_view prefix = "fg_";
    if (lower.starts_with(typed)) return name;
    const bool isShort = lower.starts_with(prefix) && lower.compare(prefix.size(), typed.size(), typed) == 0;
    return isShort ? name.substr(prefix.size()) : "";
}

Candidates namesOf(const ParameterList& parameters, const std::string& begin, const char* behind) {
    Candidates found;
    for (const Parameter& parameter : parameters.all())
        if (const std::string name = nameAsTyped(parameter.name, begin); !name.empty())
            found.push_back({name + behind, parameter.label()});
    return found;
}

/** Of NAME=VALUE: names, then the entries of an enumeration. */
Candidates assignmentsOf(const ParameterList& parameters, const std::string& word) {
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos) return namesOf(parameters, word, "=");
    Candidates found;
    for (const Entry& entry : entriesOf(parameters.find(word.substr(0, equals))))
        if (lowerCase(entryName(entry)).starts_with(lowerCase(word.substr(equals + 1))))
            found.push_back({word.substr(0, equals + 1) + entryName(entry), entry.label});
    return found;
}

/** What the argument of a command is called tells what its words are. */
Candidates argumentsOf(const Command& command, int before, const std::string& word,
                       const std::function<const ParameterList&()>& parameters) {
    const std::string_view kind = kindOf(command);
    const bool isBehindFile = kind == "FILE" && before > 0 && command.most < 0;
    if (isBehindFile || kind.find("NAME=VALUE") != std::string_view::npos)
        return assignmentsOf(parameters(), word);
    if (kind.starts_with("NAME") || kind == "PATTERN") return namesOf(parameters(), word, "");
    return {};
}

const Command* commandOf(const CLI::App& app) {
    for (const Command* command : allCommands()) {
        const CLI::App* parent = app.get_parent();
        const bool isInGroup =
            parent != nullptr && command->group != nullptr && parent->get_name() == command->group->name;
        const bool isAtTop =
            parent != nullptr && parent->get_parent() == nullptr && command->group == nullptr;
        if (app.get_name() == command->name && (isInGroup || isAtTop)) return command;
    }
    return nullptr;
}

} // namespace

std::vector<Candidate> candidatesFor(const Words& words,
                                     const std::function<const ParameterList&()>& parameters) {
    Request request;
    CLI::App program("", "appletctl");
    addCommandsTo(program, request);
    const std::string word = words.empty() ? "" : words.back();
    const Place place = placeOf(program, words);
    const Command* command = commandOf(*place.command);
    if (command != nullptr && command->kind == Command::Kind::prefix)
        return candidatesFor(Words(words.begin() + place.begin, words.end()), parameters);
    if (place.option != nullptr) return matching(valuesOfOption(*place.option), word);
    if (place.hasOptions && word.starts_with("--")) {
        const std::size_t equals = word.find('=');
        if (equals == std::string::npos) return matching(optionsOf(place.command), word);
        const CLI::Option* option = optionOf(place.command, word.substr(0, equals));
        return option == nullptr ? Candidates{}
                                 : matching(valuesOfOption(*option, word.substr(0, equals + 1)), word);
    }
    if (place.hasOptions && word == "-") return optionsOf(place.command);
    if (!place.command->get_subcommands(nullptr).empty() && place.arguments == 0)
        return matching(commandsOf(*place.command), word);
    if (command == nullptr) return {};
    if (command->argument != nullptr)
        if (const CLI::Option* argument = place.command->get_option_no_throw(command->argument);
            argument != nullptr)
            if (const Candidates listed = valuesOfOption(*argument); !listed.empty())
                return matching(listed, word);
    return argumentsOf(*command, place.arguments, word, parameters);
}

} // namespace appletctl
