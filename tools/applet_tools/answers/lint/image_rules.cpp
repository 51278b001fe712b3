#include "applet_tools/answers/lint/rules.h"

#include "applet_tools/applet/files/LutTables.h"
#include "applet_tools/base/numbers.h"

#include "vexo/fg_parameters.h"

#include <cmath>

namespace applet_tools::lint_rules {
namespace {

/** Rows for the two directions of the region, with the vantage points for which the sensor is not checked. */
struct Direction {
    const char *offset, *size, *sensor;
    std::initializer_list<int> unchecked; // vantage points
};

/** Lookup tables that map more than a few inputs to black or white. */
void clippedTables(LintState& state, const LutTables& tables) {
    Words names, texts;
    json values = json::array();
    for (const LutTable& table : tables.colours) {
        const LutStatistics statistics = statisticsOf(table.entries, tables.largest);
        std::size_t clipped = 0;
        for (const auto& range : {statistics.atStart, statistics.atEnd})
            if (range) clipped += range->count();
        constexpr std::size_t few = 100; // one percent is not worth a finding
        if (statistics.distinct == 1 || clipped * few < table.entries.size()) continue;
        names.emplace_back(table.parameter);
        const double percent =
            std::round(100.0 * static_cast<double>(clipped) / static_cast<double>(table.entries.size()));
        texts.push_back(std::string(table.parameter) + " clips " + numberText(percent) + " % of the inputs");
        values.push_back({{"name", table.parameter}, {"clippedPercent", percent}});
    }
    if (names.empty()) return;
    state.add(
        "clipping", names, texts, values,
        "The lookup table is on and gives its smallest or largest value for many inputs: these can no longer "
        "be distinguished",
        "See 'appletctl lut show', FG_PROCESSING_GAIN, _OFFSET and _GAMMA");
}

} // namespace

void outsideTheSensor(LintState& state) {
    const Direction directions[] = {
        {"FG_XOFFSET", "FG_WIDTH", "FG_SENSORWIDTH", {FG_VANTAGEPOINT_TOP_LEFT, FG_VANTAGEPOINT_BOTTOM_LEFT}},
        {"FG_YOFFSET", "FG_HEIGHT", "FG_SENSORHEIGHT", {FG_VANTAGEPOINT_TOP_LEFT, FG_VANTAGEPOINT_TOP_RIGHT}},
    };
    for (const Direction& direction : directions) {
        const double end = state.number(direction.offset) + state.number(direction.size);
        if (!state.is("FG_VANTAGEPOINT", direction.unchecked) || end <= state.number(direction.sensor))
            continue;
        state.add(
            "sensor", {direction.offset, direction.size, direction.sensor, "FG_VANTAGEPOINT"},
            "The region of interest ends at " + numberText(end) +
                ", outside the sensor. This vantage point does not check it; another one would refuse it",
            std::string("Set ") + direction.sensor + " to the camera's own size, or a smaller region");
    }
}

void unlikeTables(LintState& state) {
    const LutTables tables = readLutTables(state.session().instance(), state.parameters());
    const Words names = {"FG_LUT_VALUE_RED", "FG_LUT_VALUE_GREEN", "FG_LUT_VALUE_BLUE"};
    if (!tables.areEqual()) {
        Words texts;
        json values = json::array();
        for (const LutTable& table : tables.colours) {
            const LutStatistics statistics = statisticsOf(table.entries, tables.largest);
            texts.push_back(std::string(table.parameter) + " from " + numberText(statistics.minimum) +
                            " to " + numberText(statistics.maximum));
            values.push_back({{"name", table.parameter},
                              {"minimum", statistics.minimum},
                              {"maximum", statistics.maximum}});
        }
        state.add("tables", names, texts, values,
                  "The tables of the three colours differ. When the applet writes whole tables by itself, "
                  "from a file or by the formula, the board receives blue's for all three",
                  "Set the elements of each colour after the file was loaded, or use one table for all; "
                  "'appletctl lut show' compares with the board");
    }
    if (!state.is("FG_LUT_ENABLE", {FG_ON})) return;
    clippedTables(state, tables);
    for (const LutTable& table : tables.colours)
        if (statisticsOf(table.entries, tables.largest).distinct == 1)
            state.add(
                "flat-table", {table.parameter},
                {std::string(table.parameter) + " is " + numberText(table.entries.front()) + " everywhere"},
                json::array({{{"name", table.parameter},
                              {"minimum", table.entries.front()},
                              {"maximum", table.entries.front()}}}),
                "The lookup table is on and gives one value for all inputs: the image is uniform",
                "See 'appletctl lut show', FG_PROCESSING_GAIN, _OFFSET and _GAMMA");
}

void customTableWithoutFile(LintState& state) {
    if (!state.is("FG_LUT_TYPE", {LUT_TYPE_CUSTOM})) return;
    if (!std::get<std::string>(state.value("FG_LUT_CUSTOM_FILE")).empty()) return;
    state.add("table-file", {"FG_LUT_TYPE", "FG_LUT_CUSTOM_FILE"},
              "The tables are to come from a file and none is named: they are what they were before, and no "
              "configuration file holds them",
              "Set FG_LUT_CUSTOM_FILE, or FG_LUT_TYPE=LUT_TYPE_PROCESSING");
}

void simulatorOrDebug(LintState& state) {
    if (state.is("FG_CAMERASIMULATOR_ENABLE", {FG_CAMERASIMULATOR}))
        state.add("simulator", {"FG_CAMERASIMULATOR_ENABLE"},
                  "The images come from the camera simulator, not from the camera",
                  "Set FG_CAMERASIMULATOR_ENABLE=FG_CAMPORT");
    if (state.is("FG_CAMERASIMULATOR_ENABLE", {FG_CAMERASIMULATOR}) && !state.is("FG_PIXELFORMAT", {RGB8}))
        state.add("simulator", {"FG_PIXELFORMAT"},
                  "The value of the camera simulator is in the low 8 bits of a component, so its picture is "
                  "dark",
                  "Set FG_PIXELFORMAT=RGB8");
    for (const char* name : {"FG_DEBUGINENABLE", "FG_DEBUGOUTENABLE"})
        if (state.is(name, {FG_ON}))
            state.add("debug", {name}, "The debug interface taps or feeds the image path",
                      std::string("Set ") + name + "=FG_OFF");
}

} // namespace applet_tools::lint_rules
