#include "applet_tools/applet/published_limits.h"
#include "applet_tools/applet/values.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/defaults_and_roles.h"
#include "appletctl/commands/Command.h"

#include <unistd.h>

namespace appletctl {
namespace {

std::string accessInWords(const Parameter& parameter) {
    const std::string word = accessWord(parameter);
    if (word == "ro") return "ro (read-only now)";
    if (word == "rw") return "rw (not to be changed while an acquisition runs)";
    if (word == "rw+") return "rw+ (also while an acquisition runs)";
    return word;
}

Report describeParameters(Context& context, const Words& names) {
    Instance& instance = context.instance();
    const ParameterList& parameters = context.parameters();
    std::vector<Target> targets;
    std::vector<const Parameter*> wanted;
    for (const std::string& name : names) {
        targets.push_back(findTarget(parameters, name));
        wanted.push_back(targets.back().parameter);
    }

    const auto defaultsAndRoles = backgroundOf(context, wanted, FileRoles::asked);
    Report report;
    report.document["parameters"] = nlohmann::ordered_json::array();
    Table table;
    for (const Target& target : targets) {
        const Parameter* const parameter = target.parameter;
        const ReadResult reading = context.read(target);
        const std::string text = explanationOf(instance, *parameter);
        nlohmann::ordered_json row;
        addDescription(row, *parameter);
        if (!reading.isMeasured)
            addNotMeasured(row);
        else if (reading.error == FG_OK)
            addValue(row, target, reading.value);
        else
            row["error"] = codeAsJson(reading.error);
        const DefaultAndRole& known = defaultsAndRoles.at(parameter->name);
        if (known.start && elementCount(*parameter) == 0) addValue(row["default"], {parameter}, *known.start);
        row["isSettable"] = known.isSettable;
        row["fileRole"] = known.fileRole;
        row["description"] = text;
        report.document["parameters"].push_back(std::move(row));

        const auto addLine = [&](const char* title, const std::string& content) {
            if (!content.empty()) table.addRow({title, printable(content)});
        };
        table.addSubject(target.name());
        addLine("label", parameter->label());
        addLine("id", numberText(parameter->id));
        addLine("group", parameter->path());
        addLine("kind", kindName(*parameter));
        addLine("value", !reading.isMeasured      ? notMeasuredText
                         : reading.error == FG_OK ? valueWithUnit(*parameter, reading.value)
                                                  : "- (" + codeInWords(reading.error) + ")");
        if (known.start) addLine("default", valueWithUnit(*parameter, *known.start));
        addLine("access", known.isSettable ? accessInWords(*parameter) : "ro (never to be set)");
        addLine("limits", limitsText(*parameter));
        addLine("unit", parameter->unit());
        for (const Entry& entry : entriesOf(*parameter))
            addLine("entry", entryName(entry) + " = " + numberText(entry.value) + ", " + entry.label);
        addLine("file", fileRoleInWords(known.fileRole));
        addLine("reading", parameter->effectOfReading());
        addLine("setting", parameter->effectOfWriting());
        addLine("text", text);
    }
    report.text = table.render(Style::forStream(STDOUT_FILENO));
    return report;
}

} // namespace

extern const Command describeCommand;
const Command describeCommand = {
    .name = "describe",
    .help = "Show all that is known of parameters",
    .argument = "NAME",
    .argumentHelp = "Parameters",
    .examples = {{"describe FG_LINETRIGGERMODE", "all that is known of it"}},
    .fewest = 1,
    .most = -1,
    .run = describeParameters,
    .scratch = Context::Scratch::wanted,
    .showsValues = true,
};

} // namespace appletctl
