#include "applet_tools/applet/published_limits.h"
#include "applet_tools/applet/values.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/defaults_and_roles.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/terminal.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/lines.h"

#include <unistd.h>

namespace appletctl {
namespace {

std::string accessInWords(const Parameter& parameter) {
    std::string word = accessWord(parameter);
    if (word == "ro") return "ro (read-only now)";
    if (word == "rw") return "rw (not to be changed while an acquisition runs)";
    if (word == "rw+") return "rw+ (also while an acquisition runs)";
    return word;
}

/** All properties of a parameter. */
struct Description {
    Target target;
    ReadResult reading;
    const DefaultAndRole& known;
    std::string explanation;
};

nlohmann::ordered_json asJson(const Description& described) {
    const auto& [target, reading, known, explanation] = described;
    const Parameter& parameter = *target.parameter;
    nlohmann::ordered_json row;
    addDescription(row, parameter);
    addReading(row, target, reading);
    if (known.start && elementCount(parameter) == 0) addValue(row["default"], {&parameter}, *known.start);
    row["isSettable"] = known.isSettable;
    row["fileRole"] = known.fileRole;
    row["description"] = explanation;
    return row;
}

/** The content of a line; a line without text is left out. */
struct Line {
    const char* title;
    std::string text;
};

std::vector<Line> linesOf(const Description& described) {
    const auto& [target, reading, known, explanation] = described;
    const Parameter& parameter = *target.parameter;
    std::vector<Line> lines = {
        {"label", parameter.label()},
        {"id", numberText(parameter.id)},
        {"group", parameter.path()},
        {"kind", kindName(parameter)},
        {"value", shownReading(parameter, reading)},
        {"default", known.start ? valueWithUnit(parameter, *known.start) : ""},
        {"access", known.isSettable ? accessInWords(parameter) : "ro (never to be set)"},
        {"limits", limitsText(parameter)},
        {"unit", parameter.unit()},
    };
    for (const Entry& entry : entriesOf(parameter))
        lines.push_back({"entry", entryName(entry) + " = " + numberText(entry.value) + ", " + entry.label});
    lines.push_back({"file", fileRoleInWords(known.fileRole)});
    lines.push_back({"reading", parameter.effectOfReading()});
    lines.push_back({"setting", parameter.effectOfWriting()});
    lines.push_back({"text", explanation});
    return lines;
}

Report describeParameters(Context& context, const Words& names) {
    const std::vector<Target> targets = findTargets(context.parameters(), names);
    std::vector<const Parameter*> wanted;
    wanted.reserve(targets.size());
    for (const Target& target : targets)
        wanted.push_back(target.parameter);
    const auto defaultsAndRoles = defaultsAndRolesOf(context, wanted, FileRoles::asked);
    Report report;
    report.document["parameters"] = nlohmann::ordered_json::array();
    Table table;
    for (const Target& target : targets) {
        const Description described{target, context.read(target), defaultsAndRoles.at(target.parameter->name),
                                    explanationOf(context.instance(), *target.parameter)};
        report.document["parameters"].push_back(asJson(described));
        table.addSubject(target.name());
        for (const auto& [title, text] : linesOf(described))
            if (!text.empty()) table.addRow({title, printable(text)});
    }
    report.text = table.render(Style::forStream(STDOUT_FILENO));
    return report;
}

} // namespace

extern const Command describeCommand;
const Command describeCommand = {
    .name = "describe",
    .help = "Show all properties of parameters",
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
