#include "applet_tools/answers/differences.h"

#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"

#include <algorithm>
#include <cmath>

namespace applet_tools {
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

std::vector<Difference> differencesOf(const std::vector<Side>& sides, const ParameterList& parameters,
                                      FileKeys& keys) {
    std::vector<Difference> differences;
    for (const auto& line : keys.defaults().values()) {
        const Parameter& parameter = parameters.find(line.key);
        std::vector<std::optional<std::string>> values;
        values.reserve(sides.size());
        for (const Side& side : sides)
            values.push_back((side.file != nullptr ? *side.file : keys.defaults()).value(line.key));
        const bool areSame = std::ranges::all_of(
            values, [&](const auto& value) { return isSame(parameter, values.front(), value); });
        if (areSame || !keys.isReadByLoad(line.key)) continue;
        Difference difference{parameter.name, {}, {{"name", parameter.name}, {"unit", parameter.unit()}}};
        for (std::size_t i = 0; i < sides.size(); ++i) {
            difference.values.push_back(cell(parameter, values[i]));
            difference.document[sides[i].member] = asJson(parameter, values[i]);
        }
        difference.isNextCycle = isNextCycle(parameters, line.key, sides);
        differences.push_back(std::move(difference));
    }
    return differences;
}

namespace {

void requireLoadable(ScratchSession& session, FileKeys& keys, const std::vector<Side>& sides) {
    for (const Side& side : sides) {
        const std::string trouble =
            side.isToBeLoaded ? wholeFileTrouble(session, keys, *side.file) : std::string();
        if (!trouble.empty())
            throw UsageError("no load takes the file " + inQuotes(side.title) + ": " + trouble);
    }
}

} // namespace

json differencesJob(ScratchSession& session, const json& arguments) {
    std::vector<std::optional<ConfigurationFile>> files;
    for (const json& side : arguments.at("sides")) {
        const json& text = side.at("text");
        files.push_back(text.is_null() ? std::nullopt : std::optional<ConfigurationFile>(bytesOf(text)));
    }
    std::vector<Side> sides;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const json& side = arguments["sides"][i];
        sides.push_back({side.at("title").get<std::string>(), side.at("member").get<std::string>(),
                         files[i] ? &*files[i] : nullptr, side.at("isToBeLoaded").get<bool>()});
    }
    FileKeys keys(session);
    requireLoadable(session, keys, sides);
    json rows = json::array();
    constexpr auto replace = json::error_handler_t::replace;
    for (const Difference& one : differencesOf(sides, session.parameters(), keys))
        rows.push_back({{"parameter", one.parameter},
                        {"values", one.values},
                        {"document", one.document.dump(-1, ' ', false, replace)}, // its members have an order
                        {"isNextCycle", one.isNextCycle}});
    return rows;
}

std::vector<Difference> askDifferences(ScratchBoard& scratch, const std::vector<Side>& sides) {
    json arguments = {{"sides", json::array()}};
    for (const Side& side : sides) {
        json text;
        if (side.file != nullptr) // a carriage return may be outside of the values
            text = asBytes(side.file->text().find('\r') != std::string::npos ? side.file->text()
                                                                             : side.file->textOfValues());
        arguments["sides"].push_back({{"title", side.title},
                                      {"member", side.member},
                                      {"text", std::move(text)},
                                      {"isToBeLoaded", side.isToBeLoaded}});
    }
    std::vector<Difference> differences;
    for (const json& row : scratch.ask("differences", arguments))
        differences.push_back({row["parameter"].get<std::string>(), row["values"].get<Words>(),
                               nlohmann::ordered_json::parse(row["document"].get<std::string>()),
                               row["isNextCycle"].get<bool>()});
    return differences;
}

} // namespace applet_tools
