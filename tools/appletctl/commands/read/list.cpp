#include "applet_tools/applet/published_limits.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/BoardState.h"
#include "applet_tools/scratch/defaults_and_roles.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/terminal.h"
#include "appletctl/commands/Command.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <set>

namespace appletctl {
namespace {

constexpr std::size_t entriesWidth = 60;

/** A listed parameter. */
struct Listed {
    const Parameter& parameter;
    const std::optional<ReadResult> reading; // empty if a read would change something on the board
    const DefaultAndRole& known;
    const bool isDifferent; // from its default
};

/** As many names of entries as fit, and the number of entries. */
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

std::string limitsCell(const Listed& listed) {
    const Parameter& parameter = listed.parameter;
    const std::string text =
        parameter.kind() == REGISTER_KIND_ENUM ? shortEntries(parameter) : limitsText(parameter);
    return text.empty() ? "-" : text;
}

std::string valueCell(const Listed& listed) {
    if (!listed.reading) return "(" + listed.parameter.effectOfReading() + ")";
    if (!listed.reading->isMeasured) return "- (not measured)";
    if (listed.reading->error != FG_OK) return "-";
    if (const std::uint32_t count = elementCount(listed.parameter); count > 0)
        return numberText(count) + " elements";
    return valueText(listed.parameter, listed.reading->value);
}

std::string defaultCell(const Listed& listed) {
    return listed.known.start ? valueText(listed.parameter, *listed.known.start) : "-";
}

struct Column {
    const char* name;
    const char* title;
    std::string (*cell)(const Listed& listed);
};

constexpr const char* defaultColumn = "default";
constexpr const char* roleColumn = "role";

constexpr Column columns[] = {
    {"name", "NAME", [](const Listed& listed) { return listed.parameter.name; }},
    {"value", "VALUE", valueCell},
    {"unit", "UNIT", [](const Listed& listed) { return listed.parameter.unit(); }},
    {"access", "ACCESS", [](const Listed& listed) { return accessWord(listed.parameter); }},
    {"limits", "LIMITS OR ENTRIES", limitsCell},
    {defaultColumn, "DEFAULT", defaultCell},
    {"id", "ID", [](const Listed& listed) { return numberText(listed.parameter.id); }},
    {"kind", "KIND", [](const Listed& listed) { return std::string(kindName(listed.parameter)); }},
    {"group", "GROUP", [](const Listed& listed) { return listed.parameter.path(); }},
    {"label", "LABEL", [](const Listed& listed) { return listed.parameter.label(); }},
    {roleColumn, "IN A FILE", [](const Listed& listed) { return listed.known.fileRole; }},
};

bool has(const Words& names, std::string_view name) { return std::ranges::find(names, name) != names.end(); }

struct ListOptions {
    bool onlyChanged = false;         /**< --changed */
    bool onlyWritable = false;        /**< --writable */
    std::optional<std::string> group; /**< --group: part of the group's labels */
    Words columns;                    /**< -f */
};

std::vector<const Parameter*> wantedParameters(Context& context, const std::string& pattern) {
    const ParameterList& parameters = context.parameters();
    const auto& own = context.options().of<ListOptions>();
    std::vector<const Parameter*> wanted = parameters.matching(pattern);
    if (own.group) {
        const auto inGroup = parameters.inGroup(*own.group);
        std::erase_if(wanted, [&](const Parameter* parameter) {
            return std::ranges::find(inGroup, parameter) == inGroup.end();
        });
    }
    if (own.onlyWritable)
        std::erase_if(wanted,
                      [](const Parameter* parameter) { return !accessWord(*parameter).starts_with("rw"); });
    return wanted;
}

/** The value; empty if a read would change something on the board, unless the pattern is the whole
 *  name. */
std::optional<ReadResult> readFor(Context& context, const Parameter& parameter, const std::string& asked) {
    if (!parameter.effectOfReading().empty() && lowerCase(asked) != lowerCase(parameter.name))
        return std::nullopt;
    return context.read(wholeOf(parameter));
}

nlohmann::ordered_json asJson(const Listed& listed, bool wantsRole) {
    const Target target{&listed.parameter}; // an array by its number of elements
    nlohmann::ordered_json row;
    addDescription(row, listed.parameter);
    if (ReadResult reading = listed.reading.value_or(ReadResult{}); listed.reading) {
        if (elementCount(listed.parameter) > 0) reading.value = emptyValue(target);
        addReading(row, target, reading);
    } else {
        row["notRead"] = listed.parameter.effectOfReading();
    }
    row["isChanged"] = listed.isDifferent;
    if (listed.isDifferent && elementCount(listed.parameter) == 0)
        addValue(row["default"], target, *listed.known.start);
    if (wantsRole) row["fileRole"] = listed.known.fileRole;
    return row;
}

/** The printed table; with the headings of the groups unless columns are chosen. */
Table tableOf(const std::vector<Listed>& rows, const Words& chosen) {
    Words names = chosen;
    if (names.empty()) {
        names = {"name", "value", "unit", "access", "limits"};
        if (std::ranges::any_of(rows, &Listed::isDifferent))
            names = {"name", "value", defaultColumn, "unit", "access", "limits"};
    }
    Table table;
    if (chosen.empty()) table.setDispensable({"LIMITS OR ENTRIES", "DEFAULT", "ACCESS", "UNIT"});
    std::vector<std::string> titles;
    for (const std::string& name : names)
        titles.push_back(std::ranges::find(columns, name, &Column::name)->title);
    table.setTitles(std::move(titles));
    const std::vector<std::string>* group = nullptr;
    for (const Listed& listed : rows) {
        if (chosen.empty() && (group == nullptr || *group != listed.parameter.groups))
            table.addHeading(listed.parameter.path());
        group = &listed.parameter.groups;
        std::vector<std::string> cells;
        for (const std::string& name : names) {
            const bool isBlank = chosen.empty() && name == defaultColumn && !listed.isDifferent;
            cells.push_back(isBlank ? "" : std::ranges::find(columns, name, &Column::name)->cell(listed));
        }
        table.addRow(std::move(cells));
    }
    return table;
}

} // namespace

Words listColumns() {
    Words names;
    for (const Column& column : columns)
        names.emplace_back(column.name);
    return names;
}

namespace {

void addListOptions(CLI::App& command, Options& options) {
    auto& own = options.own<ListOptions>();
    command.add_flag("--changed", own.onlyChanged, "Only what differs from the default");
    command.add_flag("--writable", own.onlyWritable, "Only what can be set now");
    command.add_option("-g,--group", own.group, "Only groups with this in their labels")->type_name("GROUP");
    command.add_option("-f,--columns", own.columns, "Columns: " + join(listColumns(), ","))
        ->type_name("COLS")
        ->allow_extra_args(false)
        ->delimiter(',')
        ->check(CLI::IsMember(listColumns()).description(""));
}

std::string nothingListed(const ListOptions& options, const std::string& pattern) {
    Words wanted;
    if (!pattern.empty()) wanted.push_back("matches " + quotedText(pattern));
    if (options.group) wanted.push_back("is in a group with " + quotedText(*options.group));
    if (options.onlyWritable) wanted.emplace_back("is writable");
    if (options.onlyChanged) wanted.emplace_back("differs from its default");
    return "No parameter " + enumerated(wanted) + ".\n";
}

Report listParameters(Context& context, const Words& pattern) {
    const auto& own = context.options().of<ListOptions>();
    const std::string asked = pattern.empty() ? "" : pattern.front();
    const bool wantsRole = has(own.columns, roleColumn);
    const std::vector<const Parameter*> wanted = wantedParameters(context, asked);
    Report report;
    std::map<std::string, DefaultAndRole> defaultsAndRoles;
    try {
        defaultsAndRoles =
            defaultsAndRolesOf(context, wanted, wantsRole ? FileRoles::asked : FileRoles::unasked);
    } catch (const Failure& failure) {
        // Without a scratch board the list is still useful.
        if (own.onlyChanged || wantsRole || has(own.columns, defaultColumn)) throw;
        report.notes.push_back(std::string("the defaults are not known: ") + failure.what());
    }
    std::vector<Listed> rows;
    for (const Parameter* parameter : wanted) {
        const std::optional<ReadResult> reading = readFor(context, *parameter, asked);
        const DefaultAndRole& known = defaultsAndRoles[parameter->name];
        const bool isDifferent = reading && reading->error == FG_OK && reading->isMeasured &&
                                 isChanged(context, *parameter, known, reading->value);
        const Listed listed{*parameter, reading, known, isDifferent};
        if (!own.onlyChanged || listed.isDifferent) rows.push_back(listed);
    }
    auto& documented = report.document["parameters"] = nlohmann::ordered_json::array();
    for (const Listed& listed : rows)
        documented.push_back(asJson(listed, wantsRole));
    report.text = tableOf(rows, own.columns).render(Style::forStream(STDOUT_FILENO));
    if (rows.empty() && !isPlainOutput()) report.text = nothingListed(own, asked);
    return report;
}

} // namespace

extern const Command listCommand;
const Command listCommand = {
    .name = "list",
    .help = "Show parameters as a table: name, value, unit, access, limits or entries",
    .argument = "PATTERN",
    .argumentHelp = "Part of a name, or a pattern with * ? [..]",
    .examples = {{"list", "all parameters, by groups"},
                 {"list linetrigger", "those with this in their name"},
                 {"list --writable -f name,value,limits", "three columns of what can be set now"},
                 {"list --changed --from line.mcf", "what a configuration file changes"}},
    .most = 1,
    .run = listParameters,
    .scratch = Context::Scratch::wanted,
    .addOptions = addListOptions,
    .showsValues = true,
};

} // namespace appletctl
