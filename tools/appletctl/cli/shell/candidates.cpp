#include "appletctl/cli/shell/candidates.h"

#include "applet_tools/applet/published_limits.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "applet_tools/station/signals.h"
#include "appletctl/cli/command_line.h"
#include "appletctl/cli/command_tree.h"
#include "serve/StationLocation.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace appletctl {
namespace {

using Candidates = std::vector<Candidate>;

bool takesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

/** The parser state after all words of a command line but the last. */
struct ParserState {
    const CLI::App* command;             // the command of the last word
    const CLI::Option* option = nullptr; // the option if the last word is its value
    int arguments = 0;                   // number of the command's arguments before the last word
    std::ptrdiff_t begin = 0;            // start of the words after the command
    bool hasOptions = true;              // false after a --
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

ParserState parserStateOf(const CLI::App& program, const Words& words) {
    ParserState state{.command = &program};
    for (std::size_t i = 0; i + 1 < words.size(); ++i) {
        const std::string& word = words[i];
        if (state.option != nullptr) {
            state.option = nullptr;
        } else if (state.hasOptions && word == "--") {
            state.hasOptions = false;
        } else if (state.hasOptions && word.starts_with('-') && word.size() > 1) {
            const CLI::Option* option = optionOf(state.command, word);
            if (option != nullptr && takesValue(*option)) state.option = option;
        } else if (const CLI::App* command =
                       state.arguments == 0 ? subcommandOf(*state.command, word) : nullptr) {
            state.command = command;
            state.begin = static_cast<std::ptrdiff_t>(i) + 1;
        } else {
            ++state.arguments;
        }
    }
    return state;
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
                if (std::ranges::find(found, "--" + name, &Candidate::text) == found.end())
                    found.push_back({"--" + name, option->get_description()});
    return found;
}

Candidates commandsOf(const CLI::App& command) {
    Candidates found;
    for (const CLI::App* one : command.get_subcommands(nullptr))
        if (!one->get_group().empty()) found.push_back({one->get_name(), one->get_description()});
    return found;
}

/** The name completed in the form that was typed, with or without the prefix; empty if it does not match. */
std::string nameAsTyped(const std::string& name, const std::string& begin) {
    const std::string typed = lowerCase(begin), lower = lowerCase(name);
    constexpr std::string_view prefix = "fg_";
    if (lower.starts_with(typed)) return name;
    const bool isShort = lower.starts_with(prefix) && lower.compare(prefix.size(), typed.size(), typed) == 0;
    return isShort ? name.substr(prefix.size()) : "";
}

/** The first element, the last one and the range of all, after a `[` typed after the name of an array. */
Candidates elementsOf(const ParameterList& parameters, const std::string& begin, const char* suffix) {
    const std::size_t bracket = begin.find('[');
    const std::string name = begin.substr(0, bracket);
    Candidates found;
    for (const Parameter& parameter : parameters.all()) {
        const std::uint32_t count = elementCount(parameter);
        const std::string typed = nameAsTyped(parameter.name, name);
        if (count == 0 || typed.size() != name.size()) continue;
        const std::string last = numberText(count - 1);
        for (const std::string& elements : {std::string("0"), last, "0.." + last})
            if (elements.starts_with(begin.substr(bracket + 1)))
                found.push_back({typed + '[' + elements + ']' + suffix, parameter.label()});
    }
    return found;
}

Candidates namesOf(const ParameterList& parameters, const std::string& begin, const char* suffix) {
    if (begin.find('[') != std::string::npos) return elementsOf(parameters, begin, suffix);
    Candidates found;
    for (const Parameter& parameter : parameters.all())
        if (const std::string name = nameAsTyped(parameter.name, begin); !name.empty())
            found.push_back(
                {name + (*suffix != '\0' && elementCount(parameter) > 0 ? "[" : suffix), parameter.label()});
    return found;
}

/** Completes NAME=VALUE: names, then the entries of an enumeration, by label if the value begins with one, or
 *  the ends of a number's accepted range. */
Candidates assignmentsOf(const ParameterList& parameters, const std::string& word) {
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos) return namesOf(parameters, word, "=");
    const Parameter& parameter = *findTarget(parameters, word.substr(0, equals)).parameter;
    const std::string begin = word.substr(0, equals + 1), value = word.substr(equals + 1);
    const auto isBegun = [begun = lowerCase(value)](const std::string& name) {
        return lowerCase(name).starts_with(begun);
    };
    Candidates found, labels;
    for (const Entry& entry : entriesOf(parameter)) {
        if (isBegun(entryName(entry))) found.push_back({begin + entryName(entry), entry.label});
        if (isBegun(entry.label)) labels.push_back({begin + entry.label, entryName(entry)});
    }
    if (found.empty()) found = std::move(labels);
    const std::optional<Limits> limits = limitsOf(parameter);
    if (!found.empty() || !value.empty() || !limits || elementCount(parameter) != 0) return found;
    const std::string help = limitsText(parameter) + " " + parameter.unit();
    found.push_back({begin + exactValueText(parameter, limits->minimum), "smallest, " + help});
    found.push_back({begin + exactValueText(parameter, limits->maximum), "largest, " + help});
    return found;
}

Candidates groupsOf(const ParameterList& parameters, const std::string& begin) {
    Candidates found;
    for (const Parameter& parameter : parameters.all())
        for (const std::string& group : parameter.groups)
            if (lowerCase(group).starts_with(lowerCase(begin)) &&
                std::ranges::find(found, group, &Candidate::text) == found.end())
                found.push_back({group});
    return found;
}

/** Files with this suffix, and folders, with a slash appended. */
Candidates filesOf(const std::string& begin, std::string_view suffix) {
    const std::size_t slash = begin.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : begin.substr(0, slash + 1);
    const std::string name = begin.substr(folder.size());
    Candidates found;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(folder.empty() ? "." : folder, none)) {
        const std::string file = entry.path().filename();
        if (!file.starts_with(name) || (file.starts_with('.') && name.empty())) continue;
        if (entry.is_directory(none))
            found.push_back({folder + file + '/'});
        else if (file.ends_with(suffix))
            found.push_back({folder + file});
    }
    std::ranges::sort(found, {}, &Candidate::text);
    return found;
}

/** Completes the last of several comma-separated names; `list` is "Columns: a,b,c". */
Candidates columnsOf(const std::string& list, const std::string& word) {
    const std::size_t comma = word.rfind(',');
    const std::string before = comma == std::string::npos ? "" : word.substr(0, comma + 1);
    std::istringstream names(list.substr(list.find(' ') + 1));
    Candidates found;
    for (std::string name; std::getline(names, name, ',');)
        if (name.starts_with(word.substr(before.size()))) found.push_back({before + name});
    return found;
}

/** Position after the last && or ||, and after what may precede a name there. */
std::size_t beginOfComparison(const std::string& condition) {
    constexpr std::size_t length = 2; // of && and ||
    std::size_t afterJoint = 0;
    for (const char* const joint : {"&&", "||"})
        if (const std::size_t position = condition.rfind(joint); position != std::string::npos)
            afterJoint = std::max(afterJoint, position + length);
    return std::min(condition.find_first_not_of(" (", afterJoint), condition.size());
}

/** The parameter for a name, or for a quoted or unquoted label, ignoring blanks around it; null if there is
 *  none. */
const Parameter* comparedParameter(const ParameterList& parameters, std::string name) {
    name.erase(0, name.find_first_not_of(" '\""));
    name.erase(name.find_last_not_of(" '\"") + 1);
    try {
        return &parameters.find(name);
    } catch (const UsageError&) {
        return nullptr;
    }
}

/** The values that a parameter can be compared with, as in a set of it. */
Candidates comparedValues(const ParameterList& parameters, const Parameter& parameter,
                          const std::string& value) {
    const std::string begin = parameter.name + "=";
    Candidates found = assignmentsOf(parameters, begin + value);
    std::erase_if(found, [](const Candidate& one) { return one.text.find(' ') != std::string::npos; });
    for (Candidate& one : found)
        one.text.erase(0, begin.size());
    return found;
}

/** Candidates for the end of a text, which they replace from a position on. */
struct EndCandidates {
    std::size_t begin;
    Candidates candidates;
};

/** The next part of a comparison: a name, then an operator, then a value, then && or ||. */
EndCandidates comparisonParts(const ParameterList& parameters, const std::string& comparison) {
    constexpr const char* operatorMarks = "<>=!";
    constexpr std::size_t longestOperator = 2;
    const std::size_t end = comparison.size();
    const std::size_t sign = std::min(comparison.find_first_of(operatorMarks), end);
    if (sign == end && !comparison.ends_with(' ')) return {0, namesOf(parameters, comparison, "")};

    const Parameter* const parameter = comparedParameter(parameters, comparison.substr(0, sign));
    const std::size_t signEnd = std::min(comparison.find_first_not_of(operatorMarks, sign), end);
    if (signEnd == end && end - sign < longestOperator) {
        if (parameter == nullptr) return {sign, {}};
        return {sign, matching({{"=="}, {"!="}, {"<"}, {"<="}, {">"}, {">="}}, comparison.substr(sign))};
    }

    const std::size_t value = std::min(comparison.find_first_not_of(' ', signEnd), end);
    if (comparison.find_first_of(" )", value) == std::string::npos) {
        if (parameter == nullptr) return {value, {}};
        return {value, comparedValues(parameters, *parameter, comparison.substr(value))};
    }

    const std::size_t joint = comparison.find_last_of(" )") + 1;
    return {joint, matching({{"&&"}, {"||"}}, comparison.substr(joint))};
}

/** Completes the last comparison of a condition. */
Candidates conditionParts(const ParameterList& parameters, const std::string& condition) {
    const std::size_t begin = beginOfComparison(condition);
    EndCandidates found = comparisonParts(parameters, condition.substr(begin));
    const std::string before = condition.substr(0, begin + found.begin);
    for (Candidate& one : found.candidates)
        one.text.insert(0, before);
    return found.candidates;
}

/** The stations that run. */
Candidates stationsOf(const std::string& word) {
    Candidates found;
    for (const std::string& name : serve::stationNames())
        if (name.starts_with(word) && serve::isRunning(serve::locationOf(name))) found.push_back({name});
    return found;
}

/** Completes INPUT=WAVE: the inputs, then the beginnings of a wave. */
Candidates waveParts(const std::string& word) {
    const std::size_t equals = word.find('=');
    Candidates found;
    if (equals == std::string::npos) {
        for (const StationSignal& signal : stationSignals())
            if (signal.name.find("GPI_") != std::string::npos) found.push_back({signal.name + "="});
    } else {
        for (const char* wave : {"high", "low", "square:", "edges:", "encoder:"})
            found.push_back({word.substr(0, equals + 1) + wave});
    }
    return matching(found, word);
}

/** Completes the value of an option by its type name; `before` is "--option=" if both are one word. */
Candidates valuesOfOption(const CLI::Option& option, const std::string& word, const std::string& before,
                          const std::function<const ParameterList&()>& parameters) {
    const std::string type = option.get_type_name();
    Candidates found;
    if (type == "NAME=VALUE")
        found = assignmentsOf(parameters(), word);
    else if (option.check_lname("station"))
        found = stationsOf(word);
    else if (type == "GROUP")
        found = groupsOf(parameters(), word);
    else if (type.starts_with("COLS"))
        found = columnsOf(option.get_description(), word);
    else if (type == "EXPR")
        found = conditionParts(parameters(), word);
    else if (type == "INPUT=WAVE")
        found = waveParts(word);
    else if (type == "FILE.mcf")
        found = filesOf(word, ".mcf");
    else
        for (const std::string& value : choicesOf(option))
            if (value.starts_with(word)) found.push_back({value});
    for (Candidate& one : found)
        one.text.insert(0, before);
    return found;
}

/** True if a flag of the command makes its names those of groups. */
bool areGroups(const CLI::App& command, const Words& words) {
    const CLI::Option* const flag = command.get_option_no_throw("-g");
    return flag != nullptr && !takesValue(*flag) &&
           std::ranges::any_of(words, [&](const std::string& word) { return flag->check_name(word); });
}

/** The name of a command's argument determines the kind of its words. */
Candidates argumentsOf(const Command& command, int before, const std::string& word,
                       const std::function<const ParameterList&()>& parameters) {
    const std::string_view kind = kindOf(command);
    const bool isAfterFile = kind == "FILE" && before > 0 && command.most < 0;
    Candidates files;
    if (command.most >= 0 && before >= command.most) return files;
    if (command.managesStations && kind == "NAME") return stationsOf(word);
    if (before < command.mostFiles && *command.fileSuffix != '\0') files = filesOf(word, command.fileSuffix);
    if (isAfterFile || command.file == Command::File::readUnlessAssignment) {
        const Candidates assignments = assignmentsOf(parameters(), word);
        files.insert(files.end(), assignments.begin(), assignments.end());
        return files;
    }
    if (!files.empty()) return files;
    if ((kind == "NAME[=VALUE]" && isAssignment(word)) || kind.find("NAME=VALUE") != std::string_view::npos)
        return assignmentsOf(parameters(), word);
    if (kind.starts_with("NAME") || kind == "PATTERN") return namesOf(parameters(), word, "");
    return {};
}

/** Completes a command, or a command of a group. */
Candidates helpTopics(const CLI::App& program, const Words& words, const ParserState& state,
                      const std::string& word) {
    if (state.arguments == 0) return matching(commandsOf(program), word);
    const CLI::App* group = state.arguments == 1 ? subcommandOf(program, words[words.size() - 2]) : nullptr;
    return group != nullptr ? matching(commandsOf(*group), word) : Candidates{};
}

/** After "trace diff": files with any name, and the global options. */
bool isTraceDiff(const Words& words, const ParserState& state) {
    const auto begin = words.begin() + state.begin;
    return std::distance(begin, words.end()) > 1 && *begin == "diff";
}

/** False for a command that "trace" cannot show: it runs elsewhere, or is not a command by itself. */
bool isTraceable(const CLI::App& app) {
    const auto commands = app.get_subcommands(nullptr);
    if (!commands.empty())
        return std::ranges::any_of(commands, [](const CLI::App* one) { return isTraceable(*one); });
    const Command* const command = commandOf(app);
    return command != nullptr && command->kind != Command::Kind::local &&
           command->kind != Command::Kind::prefix;
}

/** The commands that "trace" shows, and its own word "diff". */
Candidates traceWords(const CLI::App& program) {
    Candidates found = commandsOf(program);
    std::erase_if(found, [&](const Candidate& one) {
        return one.text == "diff" || !isTraceable(*subcommandOf(program, one.text));
    });
    found.insert(found.begin(), {"diff", "Compare the accesses in two files that 'trace' has written"});
    return found;
}

} // namespace

std::vector<Candidate> candidatesFor(const Words& words,
                                     const std::function<const ParameterList&()>& parameters,
                                     std::span<const Command* const> commands) {
    Request request;
    CLI::App program("", "appletctl");
    addCommandsTo(program, request, commands);
    const std::string word = words.empty() ? "" : words.back();
    const ParserState state = parserStateOf(program, words);
    const Command* command = commandOf(*state.command);
    if (command != nullptr && command->kind == Command::Kind::prefix && isTraceDiff(words, state))
        return word.starts_with('-') ? matching(optionsOf(&program), word) : Candidates{};
    const bool isTrace = command != nullptr && command->kind == Command::Kind::prefix;
    if (isTrace && std::distance(words.begin() + state.begin, words.end()) == 1 && !word.starts_with('-'))
        return matching(traceWords(program), word);
    if (isTrace) return candidatesFor(Words(words.begin() + state.begin, words.end()), parameters);
    if (state.option != nullptr) return valuesOfOption(*state.option, word, "", parameters);
    if (state.hasOptions && word.starts_with("--")) {
        const std::size_t equals = word.find('=');
        if (equals == std::string::npos) return matching(optionsOf(state.command), word);
        const CLI::Option* option = optionOf(state.command, word.substr(0, equals));
        return option == nullptr
                   ? Candidates{}
                   : valuesOfOption(*option, word.substr(equals + 1), word.substr(0, equals + 1), parameters);
    }
    if (state.hasOptions && word == "-") return optionsOf(state.command);
    if (!state.command->get_subcommands(nullptr).empty() && state.arguments == 0)
        return matching(commandsOf(*state.command), word);
    if (command == nullptr) return {};
    if (command->argument != nullptr)
        if (const CLI::Option* argument = state.command->get_option_no_throw(command->argument);
            argument != nullptr)
            if (Candidates listed = valuesOfOption(*argument, word, "", parameters); !listed.empty())
                return listed;
    if (areGroups(*state.command, words)) return groupsOf(parameters(), word);
    if (kindOf(*command) == "COMMAND") return helpTopics(program, words, state, word);
    return argumentsOf(*command, state.arguments, word, parameters);
}

} // namespace appletctl
