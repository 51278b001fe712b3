#include "applet_tools/applet/files/LutTables.h"

#include <algorithm>
#include <map>
#include <set>

namespace applet_tools {
namespace {

struct ColourRow {
    const char* colour;
    const char* parameter;
    const char* design;
};

constexpr ColourRow colourRows[] = {
    {"red", "FG_LUT_VALUE_RED", "Device1_Process0_LookupTable_R_LUTcontent"},
    {"green", "FG_LUT_VALUE_GREEN", "Device1_Process0_LookupTable_G_LUTcontent"},
    {"blue", "FG_LUT_VALUE_BLUE", "Device1_Process0_LookupTable_B_LUTcontent"},
};

std::optional<Elements> tableOnBoard(Instance& instance, const char* design, std::uint32_t count) {
    if (instance.device() == nullptr || !instance.host()->isVirtual()) return std::nullopt;
    Elements entries(count);
    if (instance.board().peek_field(instance.device(), design, 0, count, entries.data()) != VBOARD_OK)
        return std::nullopt;
    return entries;
}

std::string courseOf(const Elements& entries) {
    const bool isRising = std::is_sorted(entries.begin(), entries.end());
    const bool isFalling = std::is_sorted(entries.rbegin(), entries.rend());
    if (isRising && isFalling) return "constant";
    if (isRising) return "rising";
    if (isFalling) return "falling";
    const auto rise = std::adjacent_find(entries.begin(), entries.end(), std::less<>());
    const auto fall = std::adjacent_find(entries.begin(), entries.end(), std::greater<>());
    // The later of the two is the first change of direction.
    return "turns at entry " + numberText(std::max(rise, fall) - entries.begin());
}

/** Length of the run of equal entries from `first` on, if they are at a limit of the output. */
template <typename Iterator> std::size_t clippedLength(Iterator first, Iterator end, std::uint32_t largest) {
    if (*first != 0 && *first != largest) return 0;
    const auto length =
        std::find_if(first, end, [&](std::uint32_t entry) { return entry != *first; }) - first;
    return length > 1 ? static_cast<std::size_t>(length) : 0;
}

nlohmann::ordered_json clippedAsJson(const Elements& entries, const std::optional<ElementRange>& range) {
    if (!range) return nullptr;
    return {{"first", range->first}, {"last", range->last}, {"value", entries[range->first]}};
}

} // namespace

std::size_t differences(const Elements& a, const Elements& b) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        count += a[i] != b[i] ? 1 : 0;
    return count;
}

bool LutTables::areEqual() const {
    return std::all_of(colours.begin(), colours.end(),
                       [&](const LutTable& table) { return table.entries == colours.front().entries; });
}

std::map<std::string, Elements> designTables(Instance& instance, const ParameterList& parameters) {
    std::map<std::string, Elements> tables;
    for (const ColourRow& row : colourRows) {
        const auto parameter = std::ranges::find(parameters.all(), row.parameter, &Parameter::name);
        if (parameter == parameters.all().end()) continue;
        if (auto table = tableOnBoard(instance, row.design, elementCount(*parameter)))
            tables[row.design] = std::move(*table);
    }
    return tables;
}

LutLimits lutLimits(const ParameterList& parameters) {
    const Parameter& parameter = parameters.find(colourRows[0].parameter);
    return {elementCount(parameter), std::max(1u, parameter.record->value.u32Field.maximum)};
}

LutTables readLutTables(Instance& instance, const ParameterList& parameters) {
    LutTables tables{.colours = {}, .largest = lutLimits(parameters).largest};
    for (const ColourRow& row : colourRows) {
        const Target target = findTarget(parameters, std::string(row.parameter) + "[..]");
        auto entries = std::get<Elements>(valueOf(instance, target));
        auto onBoard = tableOnBoard(instance, row.design, target.elements->count());
        tables.colours.push_back({row.colour, row.parameter, std::move(entries), std::move(onBoard)});
    }
    return tables;
}

LutStatistics statisticsOf(const Elements& entries, std::uint32_t largest) {
    const auto [minimum, maximum] = std::minmax_element(entries.begin(), entries.end());
    LutStatistics statistics{.minimum = *minimum,
                             .maximum = *maximum,
                             .distinct = std::set<std::uint32_t>(entries.begin(), entries.end()).size(),
                             .course = courseOf(entries),
                             .atStart = {},
                             .atEnd = {}};
    const auto size = static_cast<std::uint32_t>(entries.size());
    const auto atStart = static_cast<std::uint32_t>(clippedLength(entries.begin(), entries.end(), largest));
    const auto atEnd = static_cast<std::uint32_t>(clippedLength(entries.rbegin(), entries.rend(), largest));
    if (atStart > 0) statistics.atStart = {0, atStart - 1};
    // A constant table is clipped as a whole; atStart already reports that.
    if (atEnd > 0 && atEnd < size) statistics.atEnd = {size - atEnd, size - 1};
    return statistics;
}

std::string boardInWords(const LutTables& tables, const LutTable& table) {
    if (!table.onBoard) return "";
    if (*table.onBoard == table.entries) return "same";
    for (const LutTable& other : tables.colours)
        if (*table.onBoard == other.entries) return std::string("table of ") + other.colour;
    return numberText(differences(*table.onBoard, table.entries)) + " entries differ";
}

nlohmann::ordered_json statisticsAsJson(const LutTables& tables) {
    nlohmann::ordered_json document = {{"entries", tables.colours.front().entries.size()},
                                       {"largest", tables.largest},
                                       {"equal", tables.areEqual()},
                                       {"colours", nlohmann::ordered_json::array()}};
    for (const LutTable& table : tables.colours) {
        const LutStatistics statistics = statisticsOf(table.entries, tables.largest);
        document["colours"].push_back({{"colour", table.colour},
                                       {"minimum", statistics.minimum},
                                       {"maximum", statistics.maximum},
                                       {"distinct", statistics.distinct},
                                       {"course", statistics.course},
                                       {"clippedAtStart", clippedAsJson(table.entries, statistics.atStart)},
                                       {"clippedAtEnd", clippedAsJson(table.entries, statistics.atEnd)},
                                       {"board", boardInWords(tables, table)}});
    }
    return document;
}

} // namespace applet_tools
