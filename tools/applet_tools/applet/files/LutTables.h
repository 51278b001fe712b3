/** The lookup tables of the three colours, in the applet and on the board, and their statistics. */
#ifndef APPLET_TOOLS_APPLET_FILES_LUTTABLES_H
#define APPLET_TOOLS_APPLET_FILES_LUTTABLES_H

#include "applet_tools/applet/files/LutFile.h"
#include "applet_tools/applet/values.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace applet_tools {

struct LutTable {
    const char* colour;
    const char* parameter;           /**< "FG_LUT_VALUE_RED" */
    Elements entries;                /**< the applet's cache */
    std::optional<Elements> onBoard; /**< the elements that the design received; empty without a board */
};

struct LutTables {
    std::vector<LutTable> colours; /**< red, green, blue */
    std::uint32_t largest = 0;     /**< largest value of an entry */

    bool areEqual() const;
};

/** The arrays of the design by name: the tables that the board has received. Empty without a virtual board. */
std::map<std::string, Elements> designTables(Instance& instance, const ParameterList& parameters);

/** What the tables can hold. */
LutLimits lutLimits(const ParameterList& parameters);

/** Number of elements that differ in two arrays of one length. */
std::size_t differences(const Elements& a, const Elements& b);

/** Reads all three tables. Throws Failure if a read fails. */
LutTables readLutTables(Instance& instance, const ParameterList& parameters);

struct LutStatistics {
    std::uint32_t minimum = 0;
    std::uint32_t maximum = 0;
    std::size_t distinct = 0;            /**< number of different values */
    std::string course;                  /**< "rising", "constant", "turns at entry 5", ... */
    std::optional<ElementRange> atStart; /**< run of entries at a limit of the output, at this end */
    std::optional<ElementRange> atEnd;
};

LutStatistics statisticsOf(const Elements& entries, std::uint32_t largest);

/** Compares the board's table of one colour with the applet's: "same", "table of blue", "12 entries differ";
 *  empty without a board. */
std::string boardInWords(const LutTables& tables, const LutTable& table);

nlohmann::ordered_json statisticsAsJson(const LutTables& tables);

} // namespace applet_tools

#endif
