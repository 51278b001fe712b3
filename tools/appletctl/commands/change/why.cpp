// Why a parameter is read-only or refuses a value, and what would free it: single changes of others, tried on the
// scratch board.

#include "applet_tools/answers/why.h"
#include "applet_tools/applet/assignments.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/refusal.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/jobs.h"
#include "appletctl/commands/reports.h"
#include "appletctl/commands/shared_options.h"

#include "vexo/fg_errors.h"

#include <unistd.h>

namespace appletctl {
namespace {

using nlohmann::ordered_json;

void addWays(Table& table, const char* title, const std::vector<std::string>& ways) {
    for (const std::string& way : ways)
        table.addRow({title, way});
    if (ways.empty()) table.addRow({title, "no change of another parameter that was tried"});
}

Table tableOf(const RefusalAnswer& answer, const Parameter& parameter) {
    Table table;
    table.addSubject(answer.subject);
    if (answer.code == FG_OK) {
        table.addRow({"accepted", answer.writableWith
                                      ? "now, but without effect as long as the parameter is read-only"
                                      : "now"});
        if (answer.writableWith) addWays(table, "writable with", *answer.writableWith);
        return table;
    }
    table.addRow({"refused", answer.refusal});
    const RefusalCauses& causes = answer.causes;
    if (!causes.limit.empty()) table.addRow({"limit", causes.limit});
    if (causes.isTried) addWays(table, "accepted with", causes.acceptedWith);
    if (causes.nearest) table.addRow({"nearest", exactValueWithUnit(parameter, *causes.nearest)});
    return table;
}

std::string accessInWords(const AccessAnswer& answer) {
    if (answer.isWritable)
        return answer.access == "rw+" ? "writable, also while an acquisition runs"
                                      : "writable, but not while an acquisition runs";
    return answer.hasSetter ? "now; a value can be set all the same, and takes effect when it is writable"
                            : "always: it is measured, or fixed by the design";
}

Table tableOf(const AccessAnswer& answer, const Parameter& parameter) {
    Table table;
    table.addSubject(answer.subject);
    if (answer.now.error == FG_OK) table.addRow({"now", valueWithUnit(parameter, answer.now.value)});
    table.addRow({answer.access, accessInWords(answer)});
    if (answer.hasSetter)
        addWays(table, answer.isWritable ? "read-only with" : "writable with", answer.changedWith);
    return table;
}

} // namespace

json whyJob(ScratchSession& session, const json& arguments) {
    layOutAsAsked(arguments);
    Report report;
    auto& rows = report.document["answers"] = ordered_json::array();
    startFrom(session, arguments.at("with").get<Words>());
    Probe probe(session);
    const auto add = [&](const auto& answer) {
        const Table table = tableOf(answer, session.parameters().find(answer.parameter));
        report.text += (report.text.empty() ? "" : "\n") + table.render(Style::forStream(STDOUT_FILENO));
        rows.push_back(answer.document);
        probe.restore();
    };
    const auto words = arguments.at("words").get<Words>();
    for (const std::string& word : words) {
        session.tellProgress(rows.size(), words.size());
        const bool isAssignment = word.find('=') != std::string::npos;
        if (isAssignment)
            add(whyRefused(probe, parseAssignments(session.parameters(), {word}).front()));
        else
            add(whyReadOnly(probe, findTarget(session.parameters(), word)));
    }
    return asMessage(report);
}

namespace {

Report explainParameters(Context& context, const Words& words) {
    return askScratch(context, "why",
                      {{"words", words}, {"with", context.options().of<WithOption>().assignments}});
}

} // namespace

extern const Command whyCommand;
const Command whyCommand = {
    .name = "why",
    .help = "Say why a parameter is read-only or refuses a value, and what would free it",
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
