/** Findings about the load of a configuration file. */
#ifndef APPLET_TOOLS_ANSWERS_LINT_LOAD_FINDINGS_H
#define APPLET_TOOLS_ANSWERS_LINT_LOAD_FINDINGS_H

#include "applet_tools/answers/lint/LintState.h"
#include "applet_tools/answers/loading/loading.h"

#include <string>

namespace applet_tools {

/** The parameters with values that the load's setters refused but that read back. */
Words keptNames(const LoadOutcome& outcome);

/** Adds findings about the load of the file at `path` that the resulting state does not show. */
void addLosses(LintState& state, const LoadOutcome& outcome, const std::string& path,
               const ConfigurationFile& file);

} // namespace applet_tools

#endif
