/** Configurations side by side. */
#ifndef APPLETCTL_COMMANDS_FILES_DIFFERENCES_H
#define APPLETCTL_COMMANDS_FILES_DIFFERENCES_H

#include "appletctl/commands/files/loading.h"
#include "appletctl/commands/reports.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace appletctl {

/** One of the configurations. */
struct Side {
    std::string title;             // of its column
    std::string member;            // of a difference in the document
    const ConfigurationFile* file; // null: the defaults
};

/** How a rate of the simulator is told that is one cycle away from a saved one, as a load of the file takes it there: as a
 *  row like others, or behind the table in one line. */
enum class NextCycle { row, remark };

/** Compares what a load would read, on the scratch board; measurements and what is saved for the reader only are
 *  left out. Adds the table to the text and "differences" to the document. Returns their number. */
std::size_t addDifferences(Report& report, const std::vector<Side>& sides, const ParameterList& parameters,
                           FileKeys& keys, NextCycle nextCycle);

/** The same, asked of a scratch board. */
std::size_t askDifferences(Report& report, const std::vector<Side>& sides, ScratchBoard& scratch,
                           NextCycle nextCycle = NextCycle::row);

} // namespace appletctl

#endif
