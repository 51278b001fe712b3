#include "appletctl/commands/assignment_report.h"

#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/probe/refusal.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/report_text.h"
#include "appletctl/commands/lines.h"

#include <utility>

namespace appletctl {
namespace {

/** "FG_WIDTH = 2048 pixel": the present value, or the requested one if it cannot be read. */
std::string outcomeLine(const Target& target, const Value& requested, const ReadResult& actual) {
    const Parameter& parameter = *target.parameter;
    if (!actual.isMeasured)
        return lineOf({target.name(), "-", parameter.unit()},
                      target.name() + " was set to " + valueWithUnit(parameter, requested) +
                          "; its value is not measured: offline there is no board");
    if (isPlainOutput()) return valueLine(target, actual.error == FG_OK ? actual.value : requested);
    if (actual.error != FG_OK) {
        return target.name() + " = " + valueWithUnit(parameter, requested) +
               " (cannot be read back: " + codeInWords(actual.error) + ")\n";
    }
    return target.name() + " = " + valueWithUnit(parameter, actual.value) +
           requestedAndActual(parameter, requested, actual.value) + '\n';
}

std::string leftOutLine(const Assignment& assignment) {
    const std::string name = assignment.target.name();
    const std::string asked = printable(assignment.text);
    return lineOf({"leftOut", name, asked}, name + "=" + asked + " would write a file; it was left out");
}

std::string writeLines(const AssignmentResult& result, bool areNamed) {
    std::string text;
    for (const std::string& line : *result.writes)
        text +=
            (areNamed && isPlainOutput() ? result.assignment.target.name() + '\t' : "") + accessLine(line);
    return text;
}

/** Adds the text and the row of one assignment. */
void add(Report& report, const AssignmentResult& result, const AssignmentAdditions& additions) {
    const Assignment& assignment = result.assignment;
    nlohmann::ordered_json row = asJson(result);
    const bool hasWrites = result.writes && !result.writes->empty();
    const std::string writes = hasWrites ? writeLines(result, additions.areWritesNamed) : "";
    if (result.isLeftOut) {
        report.text += leftOutLine(assignment);
    } else if (result.code == FG_OK) {
        report.text += outcomeLine(assignment.target, assignment.value, result.actual) + writes;
        if (additions.after) report.text += additions.after(assignment, row);
    } else {
        const std::string name = assignment.target.name();
        std::string refusal = refusalInWords(result);
        if (additions.suggestion && result.reason.empty())
            refusal += additions.suggestion(assignment, result.code, row);
        if (hasWrites) report.text += forPerson(name + ", written before it was refused\n") + writes;
        row["error"]["message"] = refusal;
        report.problems.push_back(std::move(refusal));
        report.exitCode = exitRefused;
    }
    report.document["assignments"].push_back(std::move(row));
}

} // namespace

Report reportAssignments(Instance& instance, const ParameterList& parameters, const Words& words,
                         const AssignmentAdditions& additions) {
    Report report;
    report.document["assignments"] = nlohmann::ordered_json::array();
    const AssignmentHooks hooks{
        .read = additions.read,
        .takeWrites = additions.takeWrites,
        .isLeftOut = additions.isLeftOut,
        .after = [&](const AssignmentResult& result) { add(report, result, additions); },
    };
    const AssignmentsOutcome outcome = applyAssignments(instance, parameters, words, hooks);
    if (outcome.notSet.empty()) return report;
    report.problems.push_back("not set after that: " + join(outcome.notSet, ", "));
    report.document["notSet"] = outcome.notSet;
    return report;
}

Report reportAssignments(Context& context, const Words& words, AssignmentAdditions additions) {
    additions.read = [&](const Target& target) { return context.read(target); };
    return reportAssignments(context.instance(), context.parameters(), words, additions);
}

Report applyLive(Context& context, const Words& words, AssignmentAdditions additions) {
    additions.suggestion = [&](const Assignment& assignment, int code, nlohmann::ordered_json& row) {
        const Suggestion suggestion = askSuggestion(context, assignment, code);
        if (suggestion.members.is_object()) row.update(suggestion.members);
        return suggestion.words();
    };
    return reportAssignments(context, words, std::move(additions));
}

} // namespace appletctl
