/** Assignments carried out, as a report. */
#ifndef APPLETCTL_COMMANDS_ASSIGNMENT_REPORT_H
#define APPLETCTL_COMMANDS_ASSIGNMENT_REPORT_H

#include "applet_tools/applet/assignments.h"
#include "appletctl/base/output.h"
#include "appletctl/commands/Context.h"

#include <functional>
#include <string>
#include <vector>

namespace appletctl {

/** What a command adds to the report of its assignments. All may be empty. */
struct AssignmentAdditions {
    /** Gives the lines of what was written to the design since it was last asked. */
    std::function<std::vector<std::string>()> takeWrites = {};
    /** Of records of these lines: the parameter that was set comes first. */
    bool areWritesNamed = false;
    /** True for an assignment that is only to be mentioned, not to be carried out. */
    std::function<bool(const Assignment&)> isLeftOut = {};
    /** Called behind each assignment that was taken; adds to its row and gives more text. */
    std::function<std::string(const Assignment&, nlohmann::ordered_json& row)> after = {};
    /** What to do about a refusal: "; accepted with FG_XOFFSET=0". It is the end, so the parameters may be gone
     *  afterwards. */
    std::function<std::string(const Assignment&, int code, nlohmann::ordered_json& row)> suggestion = {};
};

/** Carries them out up to the first refusal (see applyAssignments); the report shows each of them. */
Report reportAssignments(Instance& instance, const ParameterList& parameters, const Words& words,
                         const AssignmentAdditions& additions = {});

/** The same on the live applet; a refusal comes with a suggestion from the scratch board. */
Report applyLive(Context& context, const Words& words, AssignmentAdditions additions = {});

} // namespace appletctl

#endif
