#include "appletctl/commands/files/differences.h"

#include "appletctl/base/text.h"
#include "appletctl/commands/jobs.h"

#include <unistd.h>

#include <algorithm>

namespace appletctl {
namespace {

bool isSame(const Parameter& parameter, const std::optional<std::string>& a,
            const std::optional<std::string>& b) {
    return a && b ? isSameValue(parameter, *a, *b) : a.has_value() == b.has_value();
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
                           FileKeys& keys) {
    auto& rows = report.document["differences"] = nlohmann::ordered_json::array();
    std::vector<std::string> titles{"NAME"};
    for (const Side& side : sides)
        titles.push_back(side.title);
    Table table;
    table.setTitles(titles);
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
        table.addRow(cells);
        rows.push_back(std::move(row));
    }
    if (!rows.empty()) report.text += table.render(Style::forStream(STDOUT_FILENO));
    return rows.size();
}

json differencesJob(ScratchSession& session, const json& arguments) {
    std::vector<std::optional<ConfigurationFile>> files;
    for (const json& side : arguments) {
        const json& text = side.at("text");
        files.push_back(text.is_null() ? std::nullopt : std::optional<ConfigurationFile>(bytesOf(text)));
    }
    std::vector<Side> sides;
    for (std::size_t i = 0; i < files.size(); ++i)
        sides.push_back({arguments[i].at("title").get<std::string>(),
                         arguments[i].at("member").get<std::string>(), files[i] ? &*files[i] : nullptr});
    Report report;
    FileKeys keys(session);
    addDifferences(report, sides, session.parameters(), keys);
    return asMessage(report);
}

std::size_t askDifferences(Report& report, const std::vector<Side>& sides, ScratchBoard& scratch) {
    json arguments = json::array();
    for (const Side& side : sides)
        arguments.push_back({{"title", side.title},
                             {"member", side.member},
                             {"text", side.file != nullptr ? asBytes(side.file->text()) : json()}});
    append(report, reportOf(scratch.ask("differences", arguments)));
    return report.document["differences"].size();
}

} // namespace appletctl
