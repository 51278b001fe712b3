/** Configurations side by side. */
#ifndef APPLET_TOOLS_ANSWERS_DIFFERENCES_H
#define APPLET_TOOLS_ANSWERS_DIFFERENCES_H

#include "applet_tools/answers/loading.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace applet_tools {

/** One of the configurations. */
struct Side {
    std::string title;             /**< for a person: the name of the file, "NOW" */
    std::string member;            /**< of a difference in the document */
    const ConfigurationFile* file; /**< null: the defaults */
    std::string path{};            /**< a file to read, of which a load has to take something; else empty */
};

/** A parameter that the sides have otherwise. */
struct Difference {
    std::string parameter;
    Words values;                    /**< of each side, for a person; "-" where the side has none */
    nlohmann::ordered_json document; /**< {"name", "unit", MEMBER: value or null, ...} */
    /** A rate of the simulator that is one cycle of its clock away, as a load of a saved rate may take it there. */
    bool isNextCycle = false;
};

/** Compares what a load would read; measurements and what is saved for the reader only are left out. */
std::vector<Difference> differencesOf(const std::vector<Side>& sides, const ParameterList& parameters,
                                      FileKeys& keys);

/** The same, asked of a scratch board, which reads the files that are given by their paths. Throws UsageError for one
 *  that cannot be read and for one of which no load takes anything. */
std::vector<Difference> askDifferences(ScratchBoard& scratch, const std::vector<Side>& sides);

/** The job of a scratch board behind it: compares {"sides": [{"title", "member", "text", "path"}, ...]}; a text of null
 *  means the defaults, unless there is a path. Gives [{"parameter", "values", "document", "isNextCycle"}, ...]. */
json differencesJob(ScratchSession& session, const json& arguments);

} // namespace applet_tools

#endif
