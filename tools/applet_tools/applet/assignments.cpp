#include "applet_tools/applet/assignments.h"

#include "applet_tools/applet/access_log.h"
#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/applet/published_limits.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"

namespace applet_tools {
namespace {

/** Describes the limits or entries of the live record after a refusal; empty if they do not matter. */
std::string advice(const Parameter& parameter, const Value& value, int code) {
    if (code == FG_ERR_NOT_AVAILABLE && accessWord(parameter) != "rw" && accessWord(parameter) != "rw+")
        return "the parameter is read-only: its value is measured, or fixed by the design";
    const auto* text = std::get_if<std::string>(&value);
    if (text != nullptr && code == FG_ERR_FILE_TYPE)
        return quotedText(*text) + " is not a file that can be opened for reading";
    if (text != nullptr && code == FG_ERR_SAVE_CONFIG)
        return "see whether the folder of " + quotedText(*text) +
               " exists and the file may be read and written";
    if (text == nullptr && code == FG_ERR_FILE_TYPE)
        return "another parameter names the file: 'appletctl list FILE' shows those that do";
    if (code != FG_ERR_OUT_OF_RANGE && code != FG_ERR_GRANULARITY) return "";
    if (!isWithinLimits(parameter, value)) return acceptedText(parameter);
    if (parameter.kind() == REGISTER_KIND_ENUM) return "it is an entry that is not accepted now";
    return "it keeps to the published limits, " + limitsWithUnit(parameter);
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

nlohmann::ordered_json refusalAsJson(const Assignment& assignment) {
    nlohmann::ordered_json members = {{"name", assignment.target.name()},
                                      {"requested", requestedAsJson(assignment)}};
    if (const auto limits = limitsOf(*assignment.target.parameter)) {
        auto& limit = members["limit"];
        limit = {{"minimum", numberAsJson(limits->minimum)}, {"maximum", numberAsJson(limits->maximum)}};
        if (!assignment.target.elements) limit["step"] = numberAsJson(limits->increment);
    }
    return members;
}

std::string refusalInWords(const Parameter& parameter, const Value& value, int code) {
    const std::string reason = advice(parameter, value, code);
    return codeInWords(code) + (reason.empty() ? "" : "; " + reason);
}

Words refusalClauses(const AssignmentResult& result) {
    constexpr std::size_t mostBytes = 200;
    const auto& [target, text, value] = result.assignment;
    const std::string asked = printable(text);
    Words clauses = {target.name() + "=" + shortened(asked, mostBytes) +
                     " was refused: " + codeInWords(result.code)};
    std::string reason =
        result.reason.empty() ? advice(*target.parameter, value, result.code) : result.reason;
    if (!reason.empty()) clauses.push_back(std::move(reason));
    return clauses;
}

std::string refusalInWords(const AssignmentResult& result) { return join(refusalClauses(result), "; "); }

nlohmann::ordered_json asJson(const AssignmentResult& result) {
    const auto& [target, text, value] = result.assignment;
    nlohmann::ordered_json row;
    addDescription(row, *target.parameter);
    row["requested"] = requestedAsJson(result.assignment);
    if (result.isLeftOut) {
        row["leftOut"] = true;
        return row;
    }
    if (result.writes) row["writes"] = accessesAsJson(*result.writes);
    const ReadResult& actual = result.actual;
    if (!actual.isMeasured || actual.error == FG_OK) addReading(row, target, actual);
    if (result.code != FG_OK) {
        row["error"] = codeAsJson(result.code);
        return row;
    }
    if (!actual.isMeasured) return row;
    if (const auto taken = nearestStep(*target.parameter, result.actual.value)) row["actual"] = *taken;
    return row;
}

namespace {

/** The board knows why it rejected the image of a file. */
std::string reasonOf(Instance& instance, const Parameter& parameter, int code) {
    if (code == FG_OK || parameter.name != "FG_DEBUGINSERT") return "";
    if (instance.device() == nullptr || !instance.host()->isVirtual()) return "";
    char words[512] = "";
    const int length = instance.board().insert_trouble(instance.device(), words, sizeof words);
    return length > 0 ? std::string("the image of FG_DEBUGFILE was not put in: ") + words : "";
}

AssignmentResult apply(Instance& instance, const Assignment& assignment, const AssignmentHooks& hooks) {
    AssignmentResult result{.assignment = assignment};
    result.isLeftOut = hooks.isLeftOut && hooks.isLeftOut(assignment);
    if (result.isLeftOut) return result;
    result.code = writeValue(instance, assignment.target, assignment.value);
    result.reason = reasonOf(instance, *assignment.target.parameter, result.code);
    if (hooks.takeWrites) result.writes = hooks.takeWrites();
    result.actual = hooks.read ? hooks.read(assignment.target) : readValue(instance, assignment.target);
    return result;
}

} // namespace

AssignmentResult refusedResult(Instance& instance, const Assignment& assignment, int code) {
    return {.assignment = assignment,
            .code = code,
            .reason = reasonOf(instance, *assignment.target.parameter, code)};
}

AssignmentsOutcome applyAssignments(Instance& instance, const ParameterList& parameters, const Words& words,
                                    const AssignmentHooks& hooks) {
    const std::vector<Assignment> assignments = parseAssignments(parameters, words);
    AssignmentsOutcome outcome;
    for (const Assignment& assignment : assignments)
        outcome.notSet.push_back(assignment.target.name());
    for (const Assignment& assignment : assignments) {
        outcome.notSet.erase(outcome.notSet.begin());
        const AssignmentResult result = apply(instance, assignment, hooks);
        outcome.isRefused = result.code != FG_OK;
        if (hooks.after) hooks.after(result);
        if (outcome.isRefused) break;
    }
    return outcome;
}

} // namespace applet_tools
