#include "applet_tools/answers/differences.h"

#include "applet_tools/applet/timing/simulator_rates.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/message_rows.h"

#include "vexo/fg_parameters.h"

#include <algorithm>
#include <deque>

namespace applet_tools {
namespace {

bool isSame(const Parameter& parameter, const std::optional<std::string>& a,
            const std::optional<std::string>& b) {
    return a && b ? isSameValue(parameter, *a, *b) : a.has_value() == b.has_value();
}

/** True for a rate that the mode of each configuration computes from other parameters; a load ignores it. */
bool isComputed(std::string_view key, const std::vector<const ConfigurationFile*>& files) {
    if (!SimulatorRates::isOne(key)) return false;
    const int own = key == SimulatorRates::lineName ? FG_LINERATE : FG_FRAMERATE;
    return std::ranges::all_of(files, [&](const ConfigurationFile* file) {
        const std::string mode = file->value("FG_CAMERASIMULATOR_SELECT_MODE").value_or("");
        return !mode.empty() && wholeNumber<int>(mode) != own;
    });
}

std::string cell(const Parameter& parameter, const std::optional<std::string>& text) {
    return text ? printable(fileValueWithReading(parameter, *text)) : "-";
}

nlohmann::ordered_json asJson(const Parameter& parameter, const std::optional<std::string>& text) {
    if (!text) return nullptr;
    nlohmann::ordered_json object;
    if (const auto value = valueInFile(parameter, *text))
        addValue(object, {&parameter}, *value);
    else
        object["value"] = toUtf8(*text);
    return object;
}

} // namespace

std::vector<Difference> differencesOf(const std::vector<Side>& sides, const ParameterList& parameters,
                                      FileKeys& keys) {
    std::vector<const ConfigurationFile*> files;
    files.reserve(sides.size());
    for (const Side& side : sides)
        files.push_back(side.file != nullptr ? side.file : &keys.defaults());
    std::vector<Difference> differences;
    for (const auto& line : keys.defaults().values()) {
        const Parameter& parameter = parameters.find(line.key);
        std::vector<std::optional<std::string>> values;
        values.reserve(files.size());
        for (const ConfigurationFile* file : files)
            values.push_back(file->value(line.key));
        const bool areSame = std::ranges::all_of(
            values, [&](const auto& value) { return isSame(parameter, values.front(), value); });
        if (areSame || !keys.isReadByLoad(line.key)) continue;
        const bool isMoved = files.size() == 2 && isNextCycle(parameters, line.key, ratesIn(*files.front()),
                                                              ratesIn(*files.back()));
        if (!isMoved && isComputed(line.key, files)) continue;
        Difference difference{parameter.name, {}, {{"name", parameter.name}, {"unit", parameter.unit()}}};
        for (std::size_t i = 0; i < sides.size(); ++i) {
            difference.values.push_back(cell(parameter, values[i]));
            difference.document[sides[i].member] = asJson(parameter, values[i]);
        }
        difference.isNextCycle = isMoved;
        differences.push_back(std::move(difference));
    }
    return differences;
}

namespace {

/** Reads only the lines that a load reads, as a file on disk may be large. */
ConfigurationFile loadableFile(ScratchSession& session, FileKeys& keys, const Side& side) {
    ConfigurationFile file(textForLoad(linesOfLoad(requiredTextOfFile(side.path)), keys.defaults()));
    const std::string trouble = wholeFileTrouble(session, keys, file);
    if (!trouble.empty()) throw UsageError("no load takes the file " + inQuotes(side.title) + ": " + trouble);
    return file;
}

} // namespace

template <> struct MessageRows<Difference> {
    using Record = Difference;
    static constexpr auto rows =
        std::tuple(&Record::parameter, &Record::values, &Record::document, &Record::isNextCycle);
};

json differencesJob(ScratchSession& session, const json& arguments) {
    FileKeys keys(session);
    std::vector<Side> sides;
    std::deque<ConfigurationFile> files; // a deque, so that references stay valid
    for (const json& one : arguments.at("sides")) {
        Side& side =
            sides.emplace_back(Side{one.at("title").get<std::string>(), one.at("member").get<std::string>(),
                                    nullptr, one.at("path").get<std::string>()});
        if (!side.path.empty())
            side.file = &files.emplace_back(loadableFile(session, keys, side));
        else if (const json& text = one.at("text"); !text.is_null())
            side.file = &files.emplace_back(bytesOf(text));
    }
    return toMessage(differencesOf(sides, session.parameters(), keys));
}

std::vector<Difference> askDifferences(ScratchBoard& scratch, const std::vector<Side>& sides) {
    json arguments = {{"sides", json::array()}};
    for (const Side& side : sides) {
        json text;
        if (side.file != nullptr) text = asBytes(side.file->text());
        arguments["sides"].push_back(
            {{"title", side.title}, {"member", side.member}, {"text", std::move(text)}, {"path", side.path}});
    }
    return recordFrom<std::vector<Difference>>(scratch.ask("differences", arguments));
}

} // namespace applet_tools
