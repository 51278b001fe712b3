/** Applies assignments and reports the results. */
#ifndef APPLETCTL_COMMANDS_ASSIGNMENT_REPORT_H
#define APPLETCTL_COMMANDS_ASSIGNMENT_REPORT_H

#include "applet_tools/applet/assignments.h"
#include "appletctl/base/Report.h"
#include "appletctl/commands/Context.h"

#include <functional>
#include <string>
#include <vector>

namespace appletctl {

/** A command's additions to the report of its assignments. All may be empty. */
struct AssignmentAdditions {
    /** Reads the value after the set; if empty, readValue does. */
    std::function<ReadResult(const Target&)> read = {};
    /** Returns the log lines of the writes to the design since the last call. */
    std::function<std::vector<std::string>()> takeWrites = {};
    /** Records for these lines: the parameter that was set comes first. */
    bool areWritesNamed = false;
    /** True for an assignment that is reported but not applied. */
    std::function<bool(const Assignment&)> isLeftOut = {};
    /** Called after each accepted assignment; adds to its row and returns more text. */
    std::function<std::string(const Assignment&, nlohmann::ordered_json& row)> after = {};
    /** A suggestion after a refusal: "; accepted with FG_XOFFSET=0". Called last, so the parameters may be
     *  invalid afterwards. */
    std::function<std::string(const Assignment&, int code, nlohmann::ordered_json& row)> suggestion = {};
};

/** Applies them up to the first refusal (see applyAssignments); the report shows each of them. */
Report reportAssignments(Instance& instance, const ParameterList& parameters, const Words& words,
                         const AssignmentAdditions& additions = {});

/** The same on the live applet, where offline some values are not measured. */
Report reportAssignments(Context& context, const Words& words, AssignmentAdditions additions = {});

/** The same, with a suggestion from the scratch board after a refusal. */
Report applyLive(Context& context, const Words& words, AssignmentAdditions additions = {});

} // namespace appletctl

#endif
