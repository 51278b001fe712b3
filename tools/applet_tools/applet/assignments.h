/** NAME=VALUE words: reading them, carrying them out in order. */
#ifndef APPLET_TOOLS_APPLET_ASSIGNMENTS_H
#define APPLET_TOOLS_APPLET_ASSIGNMENTS_H

#include "applet_tools/applet/values.h"
#include "applet_tools/base/words.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace applet_tools {

struct Assignment {
    Target target;
    std::string text; /**< the value as typed */
    Value value;
};

/** Throws UsageError for a word that is none. */
std::vector<Assignment> parseAssignments(const ParameterList& parameters, const Words& words);

/** {"value": 1022}, of an entry with "symbol" and "label"; of elements the number that all of them get. */
nlohmann::ordered_json requestedAsJson(const Assignment& assignment);

/** What came of an assignment. */
struct AssignmentResult {
    const Assignment& assignment;
    bool isLeftOut = false; /**< it was not to be carried out */
    int code = 0;           /**< the setter's */
    std::string reason{};   /**< the board's words for the code, where it has any */
    ReadResult actual{};    /**< what the parameter reads afterwards */
    std::optional<std::vector<std::string>>
        writes{}; /**< lines of the board's log; none if they are not asked for */
};

/** The result as members of a document: name, id, limits and so on, "requested"; then "leftOut", or "writes", the
 *  value, "actual" where the hardware rounds, and "error". */
nlohmann::ordered_json asJson(const AssignmentResult& result);

/** How a caller takes part. All may be empty. */
struct AssignmentHooks {
    /** Gives the lines of what was written to the design since it was last asked. */
    std::function<std::vector<std::string>()> takeWrites = {};
    /** True for an assignment that is only to be mentioned, not to be carried out. */
    std::function<bool(const Assignment&)> isLeftOut = {};
    /** Called behind each assignment. A refusal is the end, so it may make the parameters invalid then. */
    std::function<void(const AssignmentResult&)> after = {};
};

struct AssignmentsOutcome {
    bool isRefused = false;
    Words notSet{}; /**< names of those behind the refused one */
};

/** Reads all words first, so that a misspelt one changes nothing, then carries them out up to the first refusal.
 *  Throws UsageError for a word that is no assignment. */
AssignmentsOutcome applyAssignments(Instance& instance, const ParameterList& parameters, const Words& words,
                                    const AssignmentHooks& hooks);

/** "-6000, value out of range; the present limits are ...": the code, and what the caller can learn from the
 *  live record after the refusal. */
std::string refusalInWords(const Parameter& parameter, const Value& value, int code);

/** "FG_WIDTH=99999 was refused: -6000, value out of range; ...". */
std::string refusalInWords(const AssignmentResult& result);

} // namespace applet_tools

#endif
