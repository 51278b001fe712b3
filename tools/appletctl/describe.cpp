#include "appletctl/commands.h"
#include "appletctl/limits.h"
#include "appletctl/text.h"
#include "appletctl/values.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace appletctl {
namespace {

/** The applet's explanation of a parameter; empty if it gives none. */
std::string explanation(Instance& instance, const Parameter& parameter) {
    // The query takes the name at the same place where it leaves the pointer to the text.
    std::vector<char> place(std::max(parameter.name.size() + 1, sizeof(char*)));
    std::memcpy(place.data(), parameter.name.c_str(), parameter.name.size() + 1);
    const auto& applet = instance.applet();
    if (applet.Fg_getParameterWithType(instance.fg(), FG_PARAM_DESCR, place.data(), 0,
                                       FG_PARAM_ALLOCATED_STRING) != FG_OK)
        return "";
    char* text = nullptr;
    std::memcpy(&text, place.data(), sizeof text);
    const std::string explained = toUtf8(text);
    applet.Fg_freeParameterStringWithType(instance.fg(), FG_PARAM_DESCR, text, 0, FG_PARAM_ALLOCATED_STRING);
    return explained == "-" ? "" : explained;
}

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

    Report report;
    report.document["parameters"] = nlohmann::ordered_json::array();
    Table table;
    for (const Parameter* parameter : wanted) {
        const Reading reading = readValue(instance, {parameter});
        const std::string text = explanation(instance, *parameter);
        nlohmann::ordered_json row;
        addDescription(row, *parameter);
        if (reading.error == FG_OK)
            addValue(row, {parameter}, reading.value);
        else
            row["error"] = codeAsJson(reading.error);
        row["description"] = text;
        report.document["parameters"].push_back(std::move(row));

        const auto addLine = [&](const char* title, const std::string& content) {
            if (!content.empty()) table.addRow({title, printable(content)});
        };
        table.addHeading(parameter->name);
        addLine("label", parameter->label());
        addLine("id", numberText(parameter->id));
        addLine("group", join(parameter->groups, " / "));
        addLine("kind", kindName(*parameter));
        addLine("value", reading.error == FG_OK ? valueWithUnit(*parameter, reading.value)
                                                : "- (" + codeInWords(reading.error) + ")");
        addLine("access", accessInWords(*parameter));
        addLine("limits", limitsText(*parameter));
        addLine("unit", parameter->unit());
        for (const Entry& entry : entriesOf(*parameter))
            addLine("entry", entryName(entry) + " = " + numberText(entry.value) + ", " + entry.label);
        addLine("text", text);
    }
    report.text = table.render(Style::forStream(STDOUT_FILENO));
    return report;
}

} // namespace appletctl
