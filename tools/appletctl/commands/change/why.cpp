// Why a parameter is read-only or refuses a value, and which single changes of other parameters would help,
// found on the scratch board.

#include "applet_tools/answers/why.h"
#include "applet_tools/base/text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/lines.h"
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

/** A precondition of the changes. */
void addMissingFile(Table& table, const std::string& file) {
    if (!file.empty())
        table.addRow(
            {"missing", shownFile(file) +
                            " is no file that can be opened for reading; until it is one, what makes "
                            "the parameter writable is refused"});
}

Table tableOf(const RefusalAnswer& answer, const Parameter& parameter) {
    Table table;
    table.addSubject(answer.subject);
    if (answer.code == FG_OK) {
        const bool isIdle = answer.writableWith && answer.moves.empty();
        table.addRow({"accepted", isIdle ? "now, but without effect as long as the parameter is read-only"
                                  : answer.writableWith ? "now, although the parameter is read-only"
                                                        : "now"});
        for (const std::string& moved : answer.moves)
            table.addRow({"moves", moved});
        if (answer.writableWith) addWays(table, "writable with", *answer.writableWith);
        addMissingFile(table, answer.missingFile);
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
    return answer.hasSetter
               ? "now; a value can be set all the same: it is stored, and 'set' says what it moves"
               : "always: it is measured, or fixed by the design";
}

Table tableOf(const AccessAnswer& answer, const Parameter& parameter) {
    Table table;
    table.addSubject(answer.subject);
    if (answer.now.error == FG_OK) table.addRow({"now", shownReading(parameter, answer.now)});
    table.addRow({answer.access, accessInWords(answer)});
    if (answer.hasSetter)
        addWays(table, answer.isWritable ? "read-only with" : "writable with", answer.changedWith);
    addMissingFile(table, answer.missingFile);
    return table;
}

const ordered_json& documentOf(Context&, const RefusalAnswer& answer) { return answer.document; }

ordered_json documentOf(Context& context, const AccessAnswer& answer) {
    return asJson(answer, findTarget(context.parameters(), answer.subject));
}

Report explainParameters(Context& context, const Words& words) {
    const Words& with = context.options().of<WithOption>().assignments;
    Report report;
    auto& rows = report.document["answers"] = ordered_json::array();
    const auto add = [&](const auto& answer) {
        const Table table = tableOf(answer, context.parameters().find(answer.parameter));
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
