#include "appletctl/differences.h"

#include "appletctl/text.h"

#include <unistd.h>

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

std::size_t addDifferences(Report& report, const Side& a, const Side& b, const ParameterList& parameters,
                           FileKeys& keys) {
    auto& rows = report.document["differences"] = nlohmann::ordered_json::array();
    Table table;
    table.setTitles({"NAME", a.title, b.title});
    for (const auto& line : keys.defaults().values()) {
        const Parameter& parameter = parameters.find(line.key);
        const auto first = a.file->value(line.key);
        const auto second = b.file->value(line.key);
        if (isSame(parameter, first, second) || !keys.isReadByLoad(line.key)) continue;
        table.addRow({parameter.name, cell(parameter, first), cell(parameter, second)});
        rows.push_back({{"name", parameter.name},
                        {"unit", parameter.unit()},
                        {a.member, asJson(parameter, first)},
                        {b.member, asJson(parameter, second)}});
    }
    if (!rows.empty()) report.text += table.render(Style::forStream(STDOUT_FILENO));
    return rows.size();
}

} // namespace appletctl
