// Sets the defaults: the values of a scratch board after its start, in the applet's own start order.

#include "applet_tools/applet/assignments.h"
#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/BoardState.h"
#include "applet_tools/scratch/probe/refusal.h"
#include "appletctl/base/report_text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/assignment_report.h"
#include "appletctl/commands/reports.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <set>

namespace appletctl {
namespace {

struct Default {
    Target target;
    Value value;
    Value before;
    int code = FG_OK; // of the last attempt

    /** An array as a whole is shown by its name alone. */
    std::string name() const {
        const bool isWhole = target.elements && target.elements->count() == elementCount(*target.parameter);
        return isWhole ? target.parameter->name : target.name();
    }
};

bool isHeld(Instance& instance, const Default& wanted) {
    const ReadResult reading = readValue(instance, wanted.target);
    return reading.error == FG_OK && reading.value == wanted.value;
}

/** Selects the elements of the target from the value of a whole array. */
Value partOf(const Value& whole, const Target& target) {
    const auto* elements = std::get_if<Elements>(&whole);
    if (elements == nullptr || !target.elements) return whole;
    return Elements(elements->begin() + target.elements->first,
                    elements->begin() + target.elements->last + 1);
}

/** The wanted parameters with a value other than the default; `wanted` is empty for all. */
std::vector<Default> openDefaults(Context& context, const std::vector<Target>& wanted, const json& defaults) {
    std::vector<Default> open;
    const auto add = [&](const Target& target, const json& value) {
        const ReadResult now = context.read(target);
        if (!now.isMeasured) return;
        const Value start = partOf(fromMessage(wholeOf(*target.parameter), value), target);
        if (now.error == FG_OK && now.value != start) open.push_back({target, start, now.value});
    };
    for (const json& row : defaults) {
        const Parameter& parameter = context.parameters().find(row.at("name").get<std::string>());
        if (wanted.empty()) add(wholeOf(parameter), row.at("value"));
        for (const Target& target : wanted)
            if (target.parameter == &parameter)
                add(target.elements ? target : wholeOf(parameter), row.at("value"));
    }
    return open;
}

void setAll(Instance& instance, std::vector<Default>& open) {
    applet_tools::repeatSets([&] {
        bool isSet = false;
        for (Default& wanted : open) {
            if (isHeld(instance, wanted)) continue;
            wanted.code =
                writeValue(instance, wanted.target, requestFor(*wanted.target.parameter, wanted.value));
            isSet |= wanted.code == FG_OK;
        }
        return isSet;
    });
}

void addOutcome(Instance& instance, const Default& wanted, Report& report) {
    const Parameter& parameter = *wanted.target.parameter;
    const std::string from = valueText(parameter, wanted.before), to = valueWithUnit(parameter, wanted.value);
    nlohmann::ordered_json row = {{"name", parameter.name},
                                  {"from", valueAsJson(wanted.target, wanted.before)},
                                  {"to", valueAsJson(wanted.target, wanted.value)}};
    if (isHeld(instance, wanted)) {
        report.text += lineOf({wanted.name(), from, valueText(parameter, wanted.value), parameter.unit()},
                              wanted.name() + ": " + from + " -> " + to);
    } else {
        report.problems.push_back(wanted.name() + " stays " + from + ", the default " + to +
                                  " was refused: " + codeInWords(wanted.code));
        report.exitCode = exitRefused;
        row["error"] = codeAsJson(wanted.code);
    }
    report.document["reset"].push_back(std::move(row));
}

std::string whyNoDefault(const Parameter& parameter) {
    if (parameter.writesFile()) return "a set of it " + parameter.effectOfWriting();
    return "it is measured, or fixed by the design";
}

/** Reports that there was nothing to reset. */
std::string heldText(const std::vector<Target>& wanted, const json& defaults) {
    if (wanted.size() != 1) return "All of them hold their defaults.\n";
    const Target& target = wanted.front();
    const Parameter& parameter = *target.parameter;
    std::string text = target.name() + " holds its default";
    for (const json& row : defaults)
        if (row.at("name") == parameter.name && (elementCount(parameter) == 0 || target.elements))
            text += ", " + valueWithUnit(parameter,
                                         partOf(fromMessage(wholeOf(parameter), row.at("value")), target));
    return text + ".\n";
}

Report resetParameters(Context& context, const Words& words) {
    Words assignments;
    std::vector<Target> wanted;
    std::set<std::string> seen;
    for (const std::string& word : words) {
        if (isAssignment(word)) {
            assignments.push_back(word);
            continue;
        }
        const Target target = findTarget(context.parameters(), word);
        if (seen.insert(target.name()).second) wanted.push_back(target);
    }
    Report report = applyLive(context, assignments);
    if (report.exitCode != exitDone) return report;
    report.document["reset"] = nlohmann::ordered_json::array();
    const json defaults = context.scratchAtDefaults().ask("defaults", nullptr);
    std::vector<Default> open = openDefaults(context, wanted, defaults);
    setAll(context.instance(), open);
    for (const Default& parameter : open)
        addOutcome(context.instance(), parameter, report);
    for (const Target& target : wanted) {
        const Parameter& parameter = *target.parameter;
        const bool isKnown =
            std::ranges::any_of(defaults, [&](const json& row) { return row.at("name") == parameter.name; });
        if (isKnown && context.read(target).isMeasured) continue;
        report.problems.push_back(target.name() + (isKnown ? " is not measured: offline there is no board"
                                                           : " has no default: " + whyNoDefault(parameter)));
        report.exitCode = exitRefused;
    }
    if (open.empty() && report.exitCode == exitDone) report.text += forPerson(heldText(wanted, defaults));
    addAssumed(report, context.assumed());
    return report;
}

} // namespace

extern const Command resetCommand;
const Command resetCommand = {
    .name = "reset",
    .help = "Set parameters to their defaults",
    .argument = "NAME",
    .argumentHelp = "Parameters or elements, all without names; then assignments to execute first",
    .examples = {{"reset FG_WIDTH", "one parameter"},
                 {"reset 'FG_LUT_VALUE_RED[0..15]'", "elements of one"},
                 {"reset", "all of them"}},
    .most = -1,
    .run = resetParameters,
    .scratch = Context::Scratch::wanted,
    .sets = Command::Sets::always,
    .showsValues = true,
};

} // namespace appletctl
