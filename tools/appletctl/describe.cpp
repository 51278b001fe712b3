#include "appletctl/background.h"
#include "appletctl/commands.h"
#include "appletctl/limits.h"
#include "appletctl/text.h"
#include "appletctl/values.h"

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

} // namespace

Report describeParameters(Context& context, const Words& names) {
    Instance& instance = context.instance();
    const ParameterList& parameters = context.parameters();
    std::vector<const Parameter*> wanted;
    for (const std::string& name : names)
        wanted.push_back(&parameters.find(name));

    const auto backgrounds = backgroundOf(context, wanted, FileRoles::asked);
    Report report;
    report.document["parameters"] = nlohmann::ordered_json::array();
    Table table;
    for (const Parameter* parameter : wanted) {
        const Reading reading = readValue(instance, {parameter});
        const std::string text = explanationOf(instance, *parameter);
        nlohmann::ordered_json row;
        addDescription(row, *parameter);
        if (reading.error == FG_OK)
            addValue(row, {parameter}, reading.value);
        else
            row["error"] = codeAsJson(reading.error);
        const Background& background = backgrounds.at(parameter->name);
        if (background.start && elementCount(*parameter) == 0)
            addValue(row["default"], {parameter}, *background.start);
        row["isSettable"] = background.isSettable;
        row["fileRole"] = background.fileRole;
        row["description"] = text;
        report.document["parameters"].push_back(std::move(row));

        const auto addLine = [&](const char* title, const std::string& content) {
            if (!content.empty()) table.addRow({title, printable(content)});
        };
        table.addHeading(parameter->name);
        addLine("label", parameter->label());
        addLine("id", numberText(parameter->id));
        addLine("group", parameter->path());
        addLine("kind", kindName(*parameter));
        addLine("value", reading.error == FG_OK ? valueWithUnit(*parameter, reading.value)
                                                : "- (" + codeInWords(reading.error) + ")");
        if (background.start) addLine("default", valueWithUnit(*parameter, *background.start));
        addLine("access", background.isSettable ? accessInWords(*parameter) : "ro (never to be set)");
        addLine("limits", limitsText(*parameter));
        addLine("unit", parameter->unit());
        for (const Entry& entry : entriesOf(*parameter))
            addLine("entry", entryName(entry) + " = " + numberText(entry.value) + ", " + entry.label);
        addLine("file", fileRoleInWords(background.fileRole));
        addLine("reading", parameter->effectOfReading());
        addLine("setting", parameter->effectOfWriting());
        addLine("text", text);
    }
    report.text = table.render(Style::forStream(STDOUT_FILENO));
    return report;
}

} // namespace appletctl
