#include "applet_tools/applet/assignments.h"

#include "applet_tools/applet/access_log.h"
#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/applet/published_limits.h"
#include "applet_tools/base/text.h"

namespace appletctl {
namespace {

std::string withUnit(const std::string& limits, const Parameter& parameter) {
    const std::string unit = parameter.unit();
    return unit.empty() ? limits : limits + " " + unit;
}

/** What the caller can learn from the live record after a refusal. */
std::string advice(const Parameter& parameter, const Value& value, int code) {
    if (code == FG_ERR_NOT_AVAILABLE && accessWord(parameter) != "rw" && accessWord(parameter) != "rw+")
        return "; the parameter is read-only: its value is measured, or fixed by the design";
    const auto* text = std::get_if<std::string>(&value);
    if (text != nullptr && code == FG_ERR_FILE_TYPE)
        return "; " + inQuotes(toUtf8(text->c_str())) + " is no file that can be opened for reading";
    if (text != nullptr && code == FG_ERR_SAVE_CONFIG)
        return "; see whether the folder of " + inQuotes(toUtf8(text->c_str())) +
               " exists and the file may be read and written";
    if (text == nullptr && code == FG_ERR_FILE_TYPE)
        return "; another parameter names the file: 'appletctl list FILE' shows those that do";
    if (code != FG_ERR_OUT_OF_RANGE && code != FG_ERR_GRANULARITY) return "";
    const bool isWithin = isWithinLimits(parameter, value);
    const std::string entries = entriesText(parameter);
    const std::string limits = withUnit(limitsText(parameter), parameter);
    if (isWithin)
        return entries.empty() ? "; it keeps to the published limits, " + limits
                               : "; it is an entry that is not accepted now";
    if (!entries.empty()) return "; the entries are " + entries;
    return limitsText(parameter).empty() ? "" : "; the present limits are " + limits;
}

/** "FG_WIDTH = 2048 pixel": what the applet holds now, or what it was given where it cannot be read. */
std::string outcomeLine(const Target& target, const Value& requested, const ReadResult& actual) {
    const Parameter& parameter = *target.parameter;
    if (isPlainOutput()) return valueLine(target, actual.error == FG_OK ? actual.value : requested);
    if (actual.error != FG_OK) {
        return target.name() + " = " + valueWithUnit(parameter, requested) +
               " (cannot be read back: " + codeInWords(actual.error) + ")\n";
    }
    return target.name() + " = " + valueWithUnit(parameter, actual.value) +
           requestedAndActual(parameter, requested, actual.value) + '\n';
}

} // namespace

std::vector<Assignment> parseAssignments(const ParameterList& parameters, const Words& words) {
    std::vector<Assignment> assignments;
    for (const std::string& word : words) {
        const std::size_t equals = word.find('=');
        if (equals == 0 || equals == std::string::npos)
            throw UsageError(inQuotedWord(word) + " is not of the form NAME=VALUE");
        const Target target = findTarget(parameters, word.substr(0, equals));
        const std::string text = word.substr(equals + 1);
        assignments.push_back({target, text, parseValue(target, text)});
    }
    return assignments;
}

nlohmann::ordered_json requestedAsJson(const Assignment& assignment) {
    if (const auto* elements = std::get_if<Elements>(&assignment.value))
        return {{"value", elements->front()}};
    return valueAsJson(assignment.target, assignment.value);
}

std::string refusalInWords(const Parameter& parameter, const Value& value, int code) {
    return codeInWords(code) + advice(parameter, value, code);
}

namespace {

/** Carries out one assignment and adds what came of it to the report. */
void applyAssignments(Instance& instance, const Assignment& assignment, const AssignmentHooks& hooks,
                      Report& report) {
    const Target& target = assignment.target;
    const Parameter& parameter = *target.parameter;
    nlohmann::ordered_json row;
    const std::string asked = toUtf8(assignment.text.c_str());
    if (hooks.isLeftOut && hooks.isLeftOut(assignment)) {
        addDescription(row, parameter);
        row["requested"] = requestedAsJson(assignment);
        row["leftOut"] = true;
        report.text +=
            lineOf({"leftOut", target.name(), printable(asked)},
                   target.name() + "=" + printable(asked) + " would write a file; it was left out");
        report.document["assignments"].push_back(std::move(row));
        return;
    }
    const int code = writeValue(instance, target, assignment.value);
    const std::vector<std::string> lines = hooks.takeWrites ? hooks.takeWrites() : std::vector<std::string>{};
    const ReadResult actual = readValue(instance, target);
    addDescription(row, parameter);
    row["requested"] = requestedAsJson(assignment);
    if (hooks.takeWrites) row["writes"] = accessesAsJson(lines);
    if (actual.error == FG_OK) addValue(row, target, actual.value);
    if (const auto taken = nearestStep(parameter, actual.value); code == FG_OK && taken)
        row["actual"] = *taken;
    std::string more;
    if (code == FG_OK) {
        report.text += outcomeLine(target, assignment.value, actual);
        if (hooks.after) more = hooks.after(assignment, row);
    } else {
        constexpr std::size_t mostBytes = 200;
        std::string refusal = target.name() + "=" + shortened(printable(asked), mostBytes) +
                              " was refused: " + refusalInWords(parameter, assignment.value, code);
        if (!lines.empty()) report.text += forPerson(target.name() + ", written before it was refused\n");
        row["error"] = codeAsJson(code);
        if (hooks.suggestion) refusal += hooks.suggestion(assignment, row);
        row["error"]["message"] = refusal;
        report.problems.push_back(std::move(refusal));
        report.exitCode = exitRefused;
    }
    const bool isNamed = hooks.areWritesNamed && isPlainOutput();
    for (const std::string& line : lines)
        report.text += (isNamed ? target.name() + '\t' : "") + accessLine(line);
    report.text += more;
    report.document["assignments"].push_back(std::move(row));
}

} // namespace

Report applyAssignments(Instance& instance, const ParameterList& parameters, const Words& words,
                        const AssignmentHooks& hooks) {
    Report report;
    report.document["assignments"] = nlohmann::ordered_json::array();
    const std::vector<Assignment> assignments = parseAssignments(parameters, words);
    std::vector<std::string> notSet;
    for (const Assignment& assignment : assignments)
        notSet.push_back(assignment.target.name());
    for (const Assignment& assignment : assignments) {
        notSet.erase(notSet.begin());
        applyAssignments(instance, assignment, hooks, report);
        if (report.exitCode != exitDone) break;
    }
    if (notSet.empty()) return report;
    report.problems.push_back("not set after that: " + join(notSet, ", "));
    report.document["notSet"] = notSet;
    return report;
}

} // namespace appletctl
