// The accepted values and the parameter that sets each limit, measured on the scratch board.

#include "applet_tools/answers/limits.h"
#include "applet_tools/answers/answer_rows.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/terminal.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/lines.h"
#include "appletctl/commands/reports.h"
#include "appletctl/commands/shared_options.h"

#include <unistd.h>

namespace appletctl {
namespace {

using nlohmann::ordered_json;

Report showLimits(Context& context, const Words& names) {
    const Words& with = context.options().of<WithOption>().assignments;
    Report report;
    auto& rows = report.document["parameters"] = ordered_json::array();
    for (const AcceptedValues& answer : askAcceptedValues(context, names, with)) {
        const Parameter& parameter = context.parameters().find(answer.parameter);
        report.text +=
            (report.text.empty() ? "" : "\n") +
            tableOf(answer.subject, rowsOf(answer, parameter)).render(Style::forStream(STDOUT_FILENO));
        rows.push_back(asJson(answer, parameter));
    }
    addAssumed(report, context, names, with);
    return report;
}

} // namespace

extern const Command limitsCommand;
const Command limitsCommand = {
    .name = "limits",
    .help = "Show what is accepted now, and which parameter sets each limit",
    .argument = "NAME",
    .argumentHelp = "Parameters, or elements of one",
    .examples = {{"limits FG_WIDTH", "what is accepted, and what sets it"},
                 {"limits FG_WIDTH --with FG_XOFFSET=1024", "the same with another offset"}},
    .fewest = 1,
    .most = -1,
    .run = showLimits,
    .scratch = Context::Scratch::wanted,
    .showsValues = true,
    .takesWithToScratch = true,
};

} // namespace appletctl
