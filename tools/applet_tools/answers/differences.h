/** Compares configurations. */
#ifndef APPLET_TOOLS_ANSWERS_DIFFERENCES_H
#define APPLET_TOOLS_ANSWERS_DIFFERENCES_H

#include "applet_tools/answers/loading/loading.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace applet_tools {

/** One of the compared configurations. */
struct Side {
    std::string title;             /**< shown to the user: the name of the file, "NOW" */
    std::string member;            /**< name of its member in the document of a difference */
    const ConfigurationFile* file; /**< null for the defaults */
    std::string path{};            /**< a file to load, which must have an effect; else empty */
};

/** A parameter with different values on the sides. */
struct Difference {
    std::string parameter;
    Words values;                    /**< one per side, as text; "-" where the side has none */
    nlohmann::ordered_json document; /**< {"name", "unit", MEMBER: value or null, ...} */
    /** True for a simulator rate that differs by one clock cycle, as after a save and load. */
    bool isNextCycle = false;
};

/** Compares the values that a load reads. Leaves out measurements and values that a load ignores, such as a simulator
 *  rate that the mode of all sides computes. */
std::vector<Difference> differencesOf(const std::vector<Side>& sides, const ParameterList& parameters,
                                      FileKeys& keys);

/** The same on a scratch board, which reads the files given by path. Throws UsageError for a file that cannot
 *  be read or from which a load takes nothing. */
std::vector<Difference> askDifferences(ScratchBoard& scratch, const std::vector<Side>& sides);

/** The scratch board job that implements it: compares {"sides": [{"title", "member", "text", "path"}, ...]};
 *  a null text with no path means the defaults. Returns Differences. */
json differencesJob(ScratchSession& session, const json& arguments);

} // namespace applet_tools

#endif
