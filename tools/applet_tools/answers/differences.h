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
    bool isToBeLoaded = false;     /**< a load has to take something of the file */
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

/** The same, asked of a scratch board. Throws UsageError when a side that is to be loaded is a file of which no load
 *  takes anything. */
std::vector<Difference> askDifferences(ScratchBoard& scratch, const std::vector<Side>& sides);

/** The job of a scratch board behind it: compares {"sides": [{"title", "member", "text", "isToBeLoaded"}, ...]}; a text of
 *  null means the defaults. Gives [{"parameter", "values", "document", "isNextCycle"}, ...]. */
json differencesJob(ScratchSession& session, const json& arguments);

} // namespace applet_tools

#endif
