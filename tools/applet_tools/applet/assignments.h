/** NAME=VALUE words: reading them and applying them in order. */
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

/** Throws UsageError for a word that is not an assignment. */
std::vector<Assignment> parseAssignments(const ParameterList& parameters, const Words& words);

/** {"value": 1022}; with "symbol" and "label" for an entry; for elements the number that all of them get. */
nlohmann::ordered_json requestedAsJson(const Assignment& assignment);

/** The result of an assignment. */
struct AssignmentResult {
    const Assignment& assignment;
    bool isLeftOut = false;                           /**< it was skipped */
    int code = 0;                                     /**< result code of the setter */
    std::string reason{};                             /**< the board's explanation of the code, if any */
    ReadResult actual{};                              /**< the reading afterwards */
    std::optional<std::vector<std::string>> writes{}; /**< lines of the board's log; empty if not requested */
};

/** The result as members of a document: name, id, limits and so on, "requested"; then "leftOut", or "writes", the
 *  value, "actual" where the hardware rounds, and "error". */
nlohmann::ordered_json asJson(const AssignmentResult& result);

/** Callbacks; each may be empty. */
struct AssignmentHooks {
    /** Reads the value after the set; if empty, readValue does. */
    std::function<ReadResult(const Target&)> read = {};
    /** Returns the log lines of the writes to the design since the last call. */
    std::function<std::vector<std::string>()> takeWrites = {};
    /** True for an assignment that is reported but not applied. */
    std::function<bool(const Assignment&)> isLeftOut = {};
    /** Called after each assignment. A refusal is the last one, so the callback may then invalidate the
     *  parameters. */
    std::function<void(const AssignmentResult&)> after = {};
};

struct AssignmentsOutcome {
    bool isRefused = false;
    Words notSet{}; /**< the names after the refused one */
};

/** Reads all words first, so that a typing error changes nothing, then applies them up to the first refusal.
 *  Throws UsageError for a word that is not an assignment. */
AssignmentsOutcome applyAssignments(Instance& instance, const ParameterList& parameters, const Words& words,
                                    const AssignmentHooks& hooks);

/** What was refused, for a document: "name", "requested", and for numbers "limit" {"minimum", "maximum", "step"}. */
nlohmann::ordered_json refusalAsJson(const Assignment& assignment);

/** The result of a set that was refused with this code. */
AssignmentResult refusedResult(Instance& instance, const Assignment& assignment, int code);

/** "-6000, value out of range; the present limits are ...": the code, and the limits or entries of the live
 *  record after the refusal. */
std::string refusalInWords(const Parameter& parameter, const Value& value, int code);

/** {"FG_WIDTH=99999 was refused: -6000, value out of range", "the present limits are ..."}. */
Words refusalClauses(const AssignmentResult& result);
/** The clauses as one sentence. */
std::string refusalInWords(const AssignmentResult& result);

} // namespace applet_tools

#endif
