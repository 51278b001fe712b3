/** Finds states that the applet accepts but that are probably not intended. */
#ifndef APPLET_TOOLS_ANSWERS_LINT_LINT_H
#define APPLET_TOOLS_ANSWERS_LINT_LINT_H

#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/ScratchSession.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace applet_tools {

/** One finding. */
struct LintFinding {
    std::string rule;      /**< the rule's name: "grid" */
    Words names;           /**< the parameters concerned */
    Words texts;           /**< the same with their values, for display */
    nlohmann::json values; /**< the same as objects with at least a name */
    std::string why;
    std::string advice;
};

/** {"rule", "names", "values", "why", "advice"}. */
nlohmann::json asJson(const LintFinding& finding);

struct Lint {
    int loaded = 0; /**< result code of the load */
    std::vector<LintFinding> findings{};
};

/** Examines the state of the scratch board, or, if `name` is not empty, the state after a load of that file.
 *  Tries values and does not restore the board. Throws UsageError for a file that cannot be loaded. */
Lint lint(ScratchSession& session, const std::string& file);

/** The same, starting from the state of the live applet. */
Lint askLint(LiveSession& live, const std::string& file);

/** The scratch board job that implements it: {"file": NAME} gives a Lint. */
json lintJob(ScratchSession& session, const json& arguments);

} // namespace applet_tools

#endif
