#include "appletctl/commands/files/check.h"

#include "applet_tools/base/text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/jobs.h"
#include "appletctl/commands/reports.h"

namespace appletctl {

json checkJob(ScratchSession& session, const json& arguments) {
    layOutAsAsked(arguments);
    FileKeys keys(session);
    const LoadOutcome outcome = loadAndCompare(session, keys, arguments.at("file").get<std::string>());
    Report report;
    addFindings(report, outcome.findings);
    return {{"report", asMessage(report)}, {"code", outcome.code}, {"state", asBytes(outcome.state)}};
}

Check askCheck(ScratchBoard& scratch, const std::string& file) {
    const json answer = scratch.ask("check", {{"file", file}, {"plain", isPlainOutput()}});
    return {reportOf(answer["report"]), answer["code"].get<int>(),
            ConfigurationFile(bytesOf(answer["state"]))};
}

namespace {

Report checkConfiguration(Context& context, const Words& words) {
    const std::string& file = fileOf(words);
    Report report;
    report.document["file"] = toUtf8(file.c_str());
    // A virtual board is no other than the scratch board itself.
    const bool isSystem = context.options().board == BoardKind::system && !context.options().offline;
    append(report, askCheck(isSystem ? context.scratchAtDefaults() : context.bareScratch(), file).report);
    const std::size_t rounded = report.document["findings"].size(); // the rest would be losses
    if (report.exitCode == exitDone)
        report.text += forPerson("A load of " + shownFile(file) +
                                 (rounded == 0 ? " loses nothing.\n" : " loses nothing but these digits.\n"));
    if (isSystem || context.options().offline) addAssumed(report, context.assumed());
    return report;
}

} // namespace

extern const Command checkCommand;
const Command checkCommand = {
    .name = "check",
    .help = "Say what a load of a configuration file would lose",
    .argument = "FILE",
    .argumentHelp = "File to read",
    .examples = {{"check line.mcf", "without loading it"}},
    .file = Command::File::read,
    .fileSuffix = ".mcf",
    .fewest = 1,
    .most = 1,
    .run = checkConfiguration,
    .scratch = Context::Scratch::wanted,
    .showsValues = true,
};

} // namespace appletctl
