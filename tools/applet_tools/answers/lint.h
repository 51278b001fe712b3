/** States that the applet accepts and that are probably not meant. */
#ifndef APPLET_TOOLS_ANSWERS_LINT_H
#define APPLET_TOOLS_ANSWERS_LINT_H

#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/scratch/ScratchSession.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace applet_tools {

/** One doubtful thing. */
struct LintFinding {
    std::string rule;      /**< that was broken: "grid" */
    Words names;           /**< of the parameters that it is about */
    Words texts;           /**< the same with their values, for a person */
    nlohmann::json values; /**< the same as objects with at least a name */
    std::string why;
    std::string advice;
};

/** {"rule", "names", "values", "why", "advice"}. */
nlohmann::json asJson(const LintFinding& finding);

struct Lint {
    int loaded = 0; /**< the code of the load */
    std::vector<LintFinding> findings{};
};

/** Looks at the state of the scratch board for an empty name, else at the one after a load of the file; tries values,
 *  and does not put the board back. Throws UsageError for a file that cannot be loaded. */
Lint lint(ScratchSession& session, const std::string& file);

/** The same from the state of the live applet. */
Lint askLint(LiveSession& live, const std::string& file);

/** The job of a scratch board behind it: {"file": NAME}: {"loaded", "findings"}. */
json lintJob(ScratchSession& session, const json& arguments);

} // namespace applet_tools

#endif
