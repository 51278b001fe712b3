#include "appletctl/commands/files/differences.h"

#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/base/text.h"
#include "appletctl/commands/jobs.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>

namespace appletctl {
namespace {

bool isSame(const Parameter& parameter, const std::optional<std::string>& a,
            const std::optional<std::string>& b) {
    return a && b ? isSameValue(parameter, *a, *b) : a.has_value() == b.has_value();
}

double numberIn(const ConfigurationFile& file, const char* key) {
    return floatingNumber(file.value(key).value_or("")).value_or(0);
}

/** True for a rate that only differs by the cycle that a load of a saved rate may take it away. The frame rate follows
 *  the line rate. */
bool isNextCycle(const ParameterList& parameters, std::string_view key, const std::vector<Side>& sides) {
    constexpr const char *line = "FG_CAMERASIMULATOR_LINERATE", *frame = "FG_CAMERASIMULATOR_FRAMERATE";
    if ((key != line && key != frame) || sides.size() != 2 || sides[0].file == nullptr ||
        sides[1].file == nullptr)
        return false;
    const ConfigurationFile &before = *sides[0].file, &after = *sides[1].file;
    const double was = numberIn(before, line), is = numberIn(after, line);
    if (!areNeighbours(parameters.find(line), was, is)) return false;
    if (key == line) return true;
    constexpr double tolerance = 1e-10; // a file holds 12 digits
    const double expected = numberIn(before, frame) / was * is;
    return std::fabs(numberIn(after, frame) - expected) <= tolerance * expected;
}

std::string cell(const Parameter& parameter, const std::optional<std::string>& text) {
    return text ? printable(fileValueText(parameter, *text)) : "-";
}

nlohmann::ordered_json asJson(const Parameter& parameter, const std::optional<std::string>& text) {
    if (!text) return nullptr;
    nlohmann::ordered_json object;
    if (const auto value = valueInFile(parameter, *text))
        addValue(object, {&parameter}, *value);
    else
        object["value"] = toUtf8(text->c_str());
    return object;
}

} // namespace

std::size_t addDifferences(Report& report, const std::vector<Side>& sides, const ParameterList& parameters,
                           FileKeys& keys, NextCycle nextCycle) {
    auto& rows = report.document["differences"] = nlohmann::ordered_json::array();
    std::vector<std::string> titles{"NAME"};
    for (const Side& side : sides)
        titles.push_back(side.title);
    Table table;
    table.setTitles(titles);
    std::size_t shown = 0;
    Words cycles;
    for (const auto& line : keys.defaults().values()) {
        const Parameter& parameter = parameters.find(line.key);
        std::vector<std::optional<std::string>> values;
        for (const Side& side : sides)
            values.push_back((side.file != nullptr ? *side.file : keys.defaults()).value(line.key));
        const bool areSame = std::ranges::all_of(
            values, [&](const auto& value) { return isSame(parameter, values.front(), value); });
        if (areSame || !keys.isReadByLoad(line.key)) continue;
        std::vector<std::string> cells{parameter.name};
        nlohmann::ordered_json row = {{"name", parameter.name}, {"unit", parameter.unit()}};
        for (std::size_t i = 0; i < sides.size(); ++i) {
            cells.push_back(cell(parameter, values[i]));
            row[sides[i].member] = asJson(parameter, values[i]);
        }
        rows.push_back(std::move(row));
        if (nextCycle == NextCycle::remark && !isPlainOutput() && isNextCycle(parameters, line.key, sides)) {
            cycles.push_back(cells[0] + " from " + cells[1] + " to " + cells[2]);
            continue;
        }
        table.addRow(cells);
        ++shown;
    }
    if (shown > 0 || isPlainOutput()) report.text += table.render(Style::forStream(STDOUT_FILENO));
    if (!cycles.empty())
        report.text += std::string(shown == 0 ? "Nothing changes but the camera simulator's rates,"
                                              : "The camera simulator's rates move") +
                       " by one of its clock cycles: " + join(cycles, ", ") + ".\n";
    return rows.size();
}

json differencesJob(ScratchSession& session, const json& arguments) {
    layOutAsAsked(arguments);
    std::vector<std::optional<ConfigurationFile>> files;
    for (const json& side : arguments.at("sides")) {
        const json& text = side.at("text");
        files.push_back(text.is_null() ? std::nullopt : std::optional<ConfigurationFile>(bytesOf(text)));
    }
    std::vector<Side> sides;
    for (std::size_t i = 0; i < files.size(); ++i)
        sides.push_back({arguments["sides"][i].at("title").get<std::string>(),
                         arguments["sides"][i].at("member").get<std::string>(),
                         files[i] ? &*files[i] : nullptr});
    Report report;
    FileKeys keys(session);
    for (const Side& side : sides) {
        const bool isFile = side.member == "first" || side.member == "second";
        const std::string trouble = isFile ? wholeFileTrouble(session, keys, *side.file) : "";
        if (!trouble.empty())
            throw UsageError("no load takes the file " + inQuotes(side.title) + ": " + trouble);
    }
    addDifferences(report, sides, session.parameters(), keys,
                   arguments.at("isNextCycleRemark").get<bool>() ? NextCycle::remark : NextCycle::row);
    return asMessage(report);
}

std::size_t askDifferences(Report& report, const std::vector<Side>& sides, ScratchBoard& scratch,
                           NextCycle nextCycle) {
    json arguments = {{"sides", json::array()}, {"isNextCycleRemark", nextCycle == NextCycle::remark}};
    for (const Side& side : sides) {
        json text;
        if (side.file != nullptr) // a carriage return may stand outside of the values
            text = asBytes(side.file->text().find('\r') != std::string::npos ? side.file->text()
                                                                             : side.file->textOfValues());
        arguments["sides"].push_back(
            {{"title", side.title}, {"member", side.member}, {"text", std::move(text)}});
    }
    append(report, askReport(scratch, "differences", arguments));
    return report.document["differences"].size();
}

} // namespace appletctl
