#include "applet_tools/answers/lint/lint.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/report_text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/assignment_report.h"
#include "appletctl/commands/reports.h"

#include "vexo/fg_errors.h"

namespace appletctl {
namespace {

using nlohmann::ordered_json;

std::string asSentence(const std::string& text) {
    return text.ends_with('?') || text.ends_with('.') ? text : text + '.';
}

std::string textOf(const LintFinding& finding) {
    const std::string values = join(finding.texts, ", ");
    if (isPlainOutput()) return join({finding.rule, values, finding.why, finding.advice}, "\t") + '\n';
    return finding.rule + ": " + values + "\n    " + asSentence(finding.why) + "\n    " +
           asSentence(finding.advice) + '\n';
}

Report lintParameters(Context& context, const Words& words) {
    const bool isFile = !words.empty() && !isAssignment(words.front());
    if (isFile && words.size() > 1) throw UsageError("give one file to examine, or assignments");
    Report report = applyLive(context, isFile ? Words{} : words);
    if (report.exitCode != exitDone) return report;
    const Lint found = askLint(context, isFile ? fileOf(words) : "");
    auto& rows = report.document["findings"] = ordered_json::array();
    for (const LintFinding& finding : found.findings) {
        rows.push_back(ordered_json(asJson(finding)));
        report.text += textOf(finding);
    }
    if (found.findings.empty()) report.text += forPerson("Nothing suspicious.\n");
    if (isFile) report.document["file"] = toUtf8(words.front());
    if (found.loaded != FG_OK)
        report.problems.push_back("the load answered " + codeInWords(found.loaded) +
                                  ": 'appletctl check' tells why");
    if (!found.findings.empty() || !report.problems.empty()) report.exitCode = exitRefused;
    addAssumed(report, context.assumed());
    return report;
}

} // namespace

extern const Command lintCommand;
const Command lintCommand = {
    .name = "lint",
    .help = "Find settings that are valid but suspicious",
    .argument = "FILE",
    .argumentHelp = "File to examine, or assignments to execute first",
    .form = "[FILE|NAME=VALUE...]",
    .examples = {{"lint line.mcf", "of a configuration file"},
                 {"lint FG_LUT_ENABLE=ON FG_PROCESSING_GAIN=4", "of a state"}},
    .file = Command::File::readUnlessAssignment,
    .fileSuffix = ".mcf",
    .most = -1,
    .run = lintParameters,
    .scratch = Context::Scratch::wanted,
    .sets = Command::Sets::assignments,
    .showsValues = true,
};

} // namespace appletctl
