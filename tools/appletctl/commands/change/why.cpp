// Why a parameter is read-only or refuses a value, and which single changes of other parameters would help,
// found on the scratch board.

#include "applet_tools/answers/why.h"
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

const ordered_json& documentOf(Context&, const RefusalAnswer& answer) { return answer.document; }

ordered_json documentOf(Context& context, const AccessAnswer& answer) {
    return asJson(answer, findTarget(context.parameters(), answer.subject));
}

Report explainParameters(Context& context, const Words& words) {
    const Words& with = context.options().of<WithOption>().assignments;
    Report report;
    auto& rows = report.document["answers"] = ordered_json::array();
    const auto add = [&](const auto& answer) {
        const Table table =
            tableOf(answer.subject, rowsOf(answer, context.parameters().find(answer.parameter)));
        report.text += (report.text.empty() ? "" : "\n") + table.render(Style::forStream(STDOUT_FILENO));
        rows.push_back(documentOf(context, answer));
    };
    for (const WhyAnswer& answer : askWhy(context, words, with))
        std::visit(add, answer);
    addAssumed(report, context, words, with);
    return report;
}

} // namespace

extern const Command whyCommand;
const Command whyCommand = {
    .name = "why",
    .help = "Show why a parameter is read-only or refuses a value, and the remedies",
    .argument = "NAME[=VALUE]",
    .argumentHelp = "Parameters or assignments",
    .examples = {{"why FG_WIDTH=20000", "why this value is refused"},
                 {"why FG_LINE_DOWNSCALE", "why it cannot be written"}},
    .fewest = 1,
    .most = -1,
    .run = explainParameters,
    .scratch = Context::Scratch::wanted,
    .showsValues = true,
    .takesWithToScratch = true,
};

} // namespace appletctl
