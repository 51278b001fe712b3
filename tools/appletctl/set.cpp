#include "appletctl/commands.h"
#include "appletctl/limits.h"
#include "appletctl/text.h"
#include "appletctl/values.h"

#include <functional>

namespace appletctl {
namespace {

struct Assignment {
    const Parameter* parameter;
    std::string text; // the value as typed
    Value value;
};

/** Reads all assignments before the first is carried out, so that a misspelt one changes nothing. */
std::vector<Assignment> parseAssignments(const ParameterList& parameters, const Words& words) {
    std::vector<Assignment> assignments;
    for (const std::string& word : words) {
        const std::size_t equals = word.find('=');
        if (equals == 0 || equals == std::string::npos)
            throw UsageError("'" + printable(word) + "' is not of the form NAME=VALUE");
        const Parameter& parameter = parameters.find(word.substr(0, equals));
        const std::string text = word.substr(equals + 1);
        assignments.push_back({&parameter, text, parseValue(parameter, text)});
    }
    return assignments;
}

std::string withUnit(const std::string& limits, const Parameter& parameter) {
    const std::string unit = parameter.unit();
    return unit.empty() ? limits : limits + " " + unit;
}

/** What the caller can learn from the live record after a refusal. */
std::string advice(const Parameter& parameter, const Value& value, int code) {
    if (code == FG_ERR_NOT_AVAILABLE && accessWord(parameter) != "rw" && accessWord(parameter) != "rw+")
        return "; the parameter is read-only";
    if (code != FG_ERR_OUT_OF_RANGE && code != FG_ERR_GRANULARITY) return "";
    const bool isWithin = isWithinLimits(parameter, value);
    const std::string entries = entriesText(parameter);
    const std::string limits = withUnit(limitsText(parameter), parameter);
    if (isWithin) {
        return (entries.empty() ? "; it keeps to the present limits (" + limits + ")" : "; it is an entry") +
               ", so the value of another parameter stands against it: 'appletctl list' shows them";
    }
    if (!entries.empty()) return "; the entries are " + entries;
    return limitsText(parameter).empty() ? "" : "; the present limits are " + limits;
}

std::string refusal(const Assignment& assignment, int code) {
    return assignment.parameter->name + "=" + printable(toUtf8(assignment.text.c_str())) +
           " was refused: " + codeInWords(code) + advice(*assignment.parameter, assignment.value, code);
}

/** "FG_WIDTH = 2048 pixel": what the applet holds now, or what it was given where it cannot be read. */
std::string outcomeText(const Parameter& parameter, const Value& requested, const Reading& actual) {
    if (actual.error != FG_OK) {
        return parameter.name + " = " + valueWithUnit(parameter, requested) +
               " (cannot be read back: " + codeInWords(actual.error) + ")";
    }
    std::string text = parameter.name + " = " + valueWithUnit(parameter, actual.value);
    const std::string wanted = valueText(parameter, requested);
    return wanted == valueText(parameter, actual.value) ? text : text + " (requested " + wanted + ")";
}

/** Carries out the assignments up to the first refusal. `writes`, if any, gives the lines of what an
 *  assignment wrote to the design. */
Report carryOut(Instance& instance, const Words& words,
                const std::function<std::vector<std::string>()>& writes) {
    const ParameterList parameters(instance);
    Report report;
    auto& done = report.document["assignments"] = nlohmann::ordered_json::array();
    const std::vector<Assignment> assignments = parseAssignments(parameters, words);
    if (writes) writes(); // drop what the bring-up wrote
    std::vector<std::string> notSet;
    for (const Assignment& assignment : assignments) {
        const Parameter& parameter = *assignment.parameter;
        if (report.exitCode != exitDone) {
            notSet.push_back(parameter.name);
            continue;
        }
        const int code = writeValue(instance, parameter, assignment.value);
        const std::vector<std::string> lines = writes ? writes() : std::vector<std::string>{};
        const Reading actual = readValue(instance, parameter);
        nlohmann::ordered_json row;
        addDescription(row, parameter);
        row["requested"] = toUtf8(assignment.text.c_str());
        if (writes) row["writes"] = lines;
        if (actual.error == FG_OK) addValue(row, parameter, actual.value);
        if (code == FG_OK) {
            report.text += outcomeText(parameter, assignment.value, actual) + '\n';
        } else {
            report.problems.push_back(refusal(assignment, code));
            row["error"] = codeAsJson(code);
            row["error"]["message"] = report.problems.back();
            report.exitCode = exitRefused;
            if (!lines.empty()) report.text += parameter.name + ", written before it was refused\n";
        }
        for (const std::string& line : lines)
            report.text += "  " + line + '\n';
        done.push_back(std::move(row));
    }
    if (notSet.empty()) return report;
    report.problems.push_back("not set after that: " + join(notSet, ", "));
    report.document["notSet"] = notSet;
    return report;
}

std::string logLine(Instance& instance, std::size_t index) {
    std::string line(256, '\0');
    int length = VBOARD_TOO_SMALL;
    while ((length = instance.board().log_line(instance.device(), index, line.data(), line.size())) ==
           VBOARD_TOO_SMALL)
        line.resize(line.size() * 2);
    line.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
    return printable(toUtf8(line.c_str()));
}

/** The accesses since the last call. */
std::vector<std::string> takeLog(Instance& instance) {
    std::vector<std::string> lines;
    const std::size_t count = instance.board().log_size(instance.device());
    for (std::size_t i = 0; i < count; ++i)
        lines.push_back(logLine(instance, i));
    instance.board().log_clear(instance.device());
    return lines;
}

} // namespace

Report setParameters(const Options& options, const Words& assignments) {
    Instance instance(options);
    return carryOut(instance, assignments, nullptr);
}

Report traceSet(const Options& options, const Words& assignments) {
    if (options.offline)
        throw UsageError("'trace set' needs a board, and --offline has none: leave --offline out");
    Instance instance(options);
    instance.board().log_kinds(instance.device(), VBOARD_SET | VBOARD_REGISTER_WRITE);
    return carryOut(instance, assignments, [&] { return takeLog(instance); });
}

} // namespace appletctl
