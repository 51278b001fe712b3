#include "applet_tools/base/text.h"
#include "appletctl/base/report_text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/file_reports.h"
#include "appletctl/commands/reports.h"

namespace appletctl {
namespace {

Report checkConfiguration(Context& context, const Words& words) {
    const std::string& file = fileOf(words);
    Report report;
    report.document["file"] = toUtf8(file);
    // A virtual board behaves like the scratch board itself.
    const bool isOnSystem = context.options().isOnSystem();
    const LoadCheck check = askCheck(isOnSystem ? context.scratchAtDefaults() : context.bareScratch(), file);
    addFindings(report, check.findings);
    if (check.losesNothing())
        report.text += forPerson("A load of " + shownFile(file) +
                                 (check.findings.empty() ? " loses nothing.\n" : " loses nothing else.\n"));
    if (isOnSystem || context.options().offline) addAssumed(report, context.assumed());
    return report;
}

} // namespace

extern const Command checkCommand;
const Command checkCommand = {
    .name = "check",
    .help = "Show what a load of a configuration file would lose",
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
