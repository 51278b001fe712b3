#include "appletctl/commands.h"
#include "appletctl/limits.h"
#include "appletctl/text.h"
#include "appletctl/values.h"

#include <unistd.h>

namespace appletctl {
namespace {

constexpr std::size_t entriesWidth = 60;

/** The entries' names as far as they fit, and how many there are. */
std::string shortEntries(const Parameter& parameter) {
    const std::vector<Entry> entries = entriesOf(parameter);
    std::string text;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::string next = (i == 0 ? "" : ", ") + entryName(entries[i]);
        if (displayWidth(text) + displayWidth(next) > entriesWidth)
            return text + ", ... (" + numberText(entries.size()) + " entries)";
        text += next;
    }
    return text;
}

std::string limitsCell(const Parameter& parameter) {
    const std::string text =
        parameter.kind() == REGISTER_KIND_ENUM ? shortEntries(parameter) : limitsText(parameter);
    return text.empty() ? "-" : text;
}

/** Reads the value, adds it to the row and gives its cell. What a read would take from the board is left
 *  alone, unless it is asked for by its whole name. */
std::string shownValue(Instance& instance, const Parameter& parameter, const std::string& asked,
                       nlohmann::ordered_json& row) {
    const std::string effect = parameter.effectOfReading();
    if (!effect.empty() && lowerCase(asked) != lowerCase(parameter.name)) {
        row["notRead"] = effect;
        return "(" + effect + ")";
    }
    const Reading reading = readValue(instance, {&parameter});
    if (reading.error != FG_OK) {
        row["error"] = codeAsJson(reading.error);
        return "-";
    }
    addValue(row, {&parameter}, reading.value);
    return valueText(parameter, reading.value);
}

} // namespace

Report listParameters(Context& context, const Words& pattern) {
    Instance& instance = context.instance();
    const ParameterList& parameters = context.parameters();
    Report report;
    report.document["parameters"] = nlohmann::ordered_json::array();
    Table table;
    table.setTitles({"NAME", "VALUE", "UNIT", "ACCESS", "LIMITS OR ENTRIES"});
    const std::vector<std::string>* group = nullptr;
    const std::string asked = pattern.empty() ? "" : pattern.front();
    for (const Parameter* parameter : parameters.matching(asked)) {
        if (group == nullptr || *group != parameter->groups) table.addHeading(join(parameter->groups, " / "));
        group = &parameter->groups;
        nlohmann::ordered_json row;
        addDescription(row, *parameter);
        const std::string value = shownValue(instance, *parameter, asked, row);
        table.addRow(
            {parameter->name, value, parameter->unit(), accessWord(*parameter), limitsCell(*parameter)});
        report.document["parameters"].push_back(std::move(row));
    }
    report.text = table.render(Style::forStream(STDOUT_FILENO));
    return report;
}

} // namespace appletctl
