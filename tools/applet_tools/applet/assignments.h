/** NAME=VALUE words: reading them, carrying them out in order. */
#ifndef APPLET_TOOLS_APPLET_ASSIGNMENTS_H
#define APPLET_TOOLS_APPLET_ASSIGNMENTS_H

#include "applet_tools/applet/values.h"
#include "appletctl/base/output.h"

#include <functional>
#include <string>
#include <vector>

namespace appletctl {

struct Assignment {
    Target target;
    std::string text; /**< the value as typed */
    Value value;
};

/** Throws UsageError for a word that is none. */
std::vector<Assignment> parseAssignments(const ParameterList& parameters, const Words& words);

/** {"value": 1022}, of an entry with "symbol" and "label"; of elements the number that all of them get. */
nlohmann::ordered_json requestedAsJson(const Assignment& assignment);

/** What a command adds to the report of its assignments. All may be empty. */
struct AssignmentHooks {
    /** Gives the lines of what was written to the design since it was last asked. */
    std::function<std::vector<std::string>()> takeWrites = {};
    /** Of records of these lines: the parameter that was set stands in front. */
    bool areWritesNamed = false;
    /** True for an assignment that is only to be told, not to be carried out. */
    std::function<bool(const Assignment&)> isLeftOut = {};
    /** Called behind each assignment that was taken; adds to its row and gives more text. */
    std::function<std::string(const Assignment&, nlohmann::ordered_json& row)> after = {};
    /** What to do about a refusal: "; accepted with FG_XOFFSET=0". It is the end, so the parameters may be gone
     *  afterwards. */
    std::function<std::string(const Assignment&, nlohmann::ordered_json& row)> suggestion = {};
};

/** Reads all words first, so that a misspelt one changes nothing, then carries them out up to the first
 *  refusal; the report shows each assignment. */
Report applyAssignments(Instance& instance, const ParameterList& parameters, const Words& words,
                        const AssignmentHooks& hooks = {});

/** "-6000, value out of range; the present limits are ...": the code, and what the caller can learn from the
 *  live record after the refusal. */
std::string refusalInWords(const Parameter& parameter, const Value& value, int code);

} // namespace appletctl

#endif
