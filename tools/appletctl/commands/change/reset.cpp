// Defaults: the values of a scratch board after its start, set in the order in which the applet sets them there.

#include "applet_tools/applet/assignments.h"
#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/refusal.h"
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
    int code = FG_OK; // of the last try
};

bool isHeld(Instance& instance, const Default& wanted) {
    const ReadResult reading = readValue(instance, wanted.target);
    return reading.error == FG_OK && reading.value == wanted.value;
}

/** Those of the wanted ones that the applet holds otherwise; `names` is empty for all. */
std::vector<Default> openDefaults(Context& context, const std::set<std::string>& names,
                                  const json& defaults) {
    std::vector<Default> open;
    for (const json& row : defaults) {
        const Parameter& parameter = context.parameters().find(row.at("name").get<std::string>());
        if (!names.empty() && !names.contains(parameter.name)) continue;
        const Target target = wholeOf(parameter);
        const ReadResult now = readValue(context.instance(), target);
        Default wanted{target, fromMessage(target, row.at("value")), now.value};
        if (now.error == FG_OK && now.value != wanted.value) open.push_back(std::move(wanted));
    }
    return open;
}

/** One value can block another, so there are rounds as long as one brings something. */
void bringAll(Instance& instance, std::vector<Default>& open) {
    constexpr int mostRounds = 8;
    bool moved = true;
    for (int round = 0; moved && round < mostRounds; ++round) {
        moved = false;
        for (Default& wanted : open) {
            if (isHeld(instance, wanted)) continue;
            wanted.code =
                writeValue(instance, wanted.target, requestFor(*wanted.target.parameter, wanted.value));
            moved |= wanted.code == FG_OK;
        }
    }
}

void tell(Instance& instance, const Default& wanted, Report& report) {
    const Parameter& parameter = *wanted.target.parameter;
    const std::string from = valueText(parameter, wanted.before), to = valueWithUnit(parameter, wanted.value);
    nlohmann::ordered_json row = {{"name", parameter.name},
                                  {"from", valueAsJson(wanted.target, wanted.before)},
                                  {"to", valueAsJson(wanted.target, wanted.value)}};
    if (isHeld(instance, wanted)) {
        report.text += lineOf({parameter.name, from, valueText(parameter, wanted.value), parameter.unit()},
                              parameter.name + ": " + from + " -> " + to);
    } else {
        report.problems.push_back(parameter.name + " stays " + from + ", the default " + to +
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

/** That nothing was to be done. */
std::string heldText(const ParameterList& parameters, const std::set<std::string>& names,
                     const json& defaults) {
    if (names.size() != 1) return "All of them hold their defaults.\n";
    const Parameter& parameter = parameters.find(*names.begin());
    std::string text = parameter.name + " holds its default";
    for (const json& row : defaults)
        if (row.at("name") == parameter.name && elementCount(parameter) == 0)
            text += ", " + valueWithUnit(parameter, fromMessage({&parameter}, row.at("value")));
    return text + ".\n";
}

Report resetParameters(Context& context, const Words& words) {
    Words assignments;
    std::set<std::string> names;
    for (const std::string& word : words) {
        if (word.find('=') != std::string::npos)
            assignments.push_back(word);
        else
            names.insert(context.parameters().find(word).name);
    }
    Report report = applyLive(context, assignments);
    if (report.exitCode != exitDone) return report;
    report.document["reset"] = nlohmann::ordered_json::array();
    const json defaults = context.scratchAtDefaults().ask("defaults", nullptr);
    std::vector<Default> open = openDefaults(context, names, defaults);
    bringAll(context.instance(), open);
    for (const Default& parameter : open)
        tell(context.instance(), parameter, report);
    for (const std::string& name : names)
        if (std::ranges::none_of(defaults, [&](const json& row) { return row.at("name") == name; })) {
            report.problems.push_back(name +
                                      " has no default: " + whyNoDefault(context.parameters().find(name)));
            report.exitCode = exitRefused;
        }
    if (open.empty() && report.exitCode == exitDone)
        report.text += forPerson(heldText(context.parameters(), names, defaults));
    addAssumed(report, context.assumed());
    return report;
}

} // namespace

extern const Command resetCommand;
const Command resetCommand = {
    .name = "reset",
    .help = "Set parameters to their defaults",
    .argument = "NAME",
    .argumentHelp = "Parameters, all without names; then assignments to carry out before",
    .examples = {{"reset FG_WIDTH", "one parameter"}, {"reset", "all of them"}},
    .most = -1,
    .run = resetParameters,
    .scratch = Context::Scratch::wanted,
    .sets = Command::Sets::always,
    .showsValues = true,
};

} // namespace appletctl
