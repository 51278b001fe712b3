/** The lookup tables of the three colours: those of the applet, those of the board, what they are like. */
#ifndef APPLET_TOOLS_APPLET_FILES_LUTTABLES_H
#define APPLET_TOOLS_APPLET_FILES_LUTTABLES_H

#include "applet_tools/applet/values.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace applet_tools {

struct LutTable {
    const char* colour;
    const char* parameter;           /**< "FG_LUT_VALUE_RED" */
    Elements entries;                /**< the applet's cache */
    std::optional<Elements> onBoard; /**< what the design received; none without a board */
};

struct LutTables {
    std::vector<LutTable> colours; /**< red, green, blue */
    std::uint32_t largest = 0;     /**< largest value of an entry */

    bool areEqual() const;
};

/** What a load takes from a lookup table file. */
struct LutFile {
    std::string trouble; /**< what is missing, which the applet reads as zeros without a word: "[green] is
                                      missing"; empty for a file that is whole */
    std::uint32_t elements = 0; /**< of each table; the entries from there on stay as they are */
};

LutFile lookAtLutFile(const std::string& file);

/** Reads all three tables. Throws Failure when the applet does not give one. */
LutTables readLutTables(Instance& instance, const ParameterList& parameters);

struct LutStatistics {
    std::uint32_t minimum = 0;
    std::uint32_t maximum = 0;
    std::size_t distinct = 0;            /**< number of different values */
    std::string course;                  /**< "rising", "constant", "turns at entry 5", ... */
    std::optional<ElementRange> atStart; /**< more than one entry at a limit of the output, at this end */
    std::optional<ElementRange> atEnd;
};

LutStatistics statisticsOf(const Elements& entries, std::uint32_t largest);

/** How the board's table of one colour relates to the applet's: "same", "table of blue", "12 entries differ";
 *  empty without a board. */
std::string boardInWords(const LutTables& tables, const LutTable& table);

nlohmann::ordered_json statisticsAsJson(const LutTables& tables);

} // namespace applet_tools

#endif
