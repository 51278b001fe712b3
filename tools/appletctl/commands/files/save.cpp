#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/file_reports.h"

namespace appletctl {
namespace {

Report saveConfiguration(Context& context, const Words& words) {
    requireBoard(context.options(), "save");
    const std::string& file = fileOf(words);
    requireConfigurationName(file);
    CommandRun run(context, behindFirst(words));
    if (run.isRefused()) return run.report;
    run.report.document["file"] = toUtf8(file.c_str());
    const ConfigurationFile saved = stateOf(run.instance);
    writeFile(file, saved.text());
    run.report.text += lineOf({"written", printable(toUtf8(file.c_str()))},
                              shownFile(file) + ": " + numberText(saved.values().size()) + " values written");
    run.report.document["values"] = saved.values().size();
    ScratchBoard& scratch = context.scratchAtDefaults();
    const std::vector<Side> sides{{"DEFAULT", "default", nullptr}, {"SAVED", "saved", &saved}};
    const std::vector<Difference> changes = askDifferences(scratch, sides);
    addDifferences(run.report, sides, changes, Sides::apart);
    if (changes.empty()) run.report.text += forPerson("All of them are defaults.\n");
    const LoadCheck check = askCheck(scratch, file, saved);
    if (!check.losesNothing())
        run.refuse(shownFile(file) + " is complete, but a load does not restore all of it:");
    addFindings(run.report, check.findings);
    return run.report;
}

} // namespace

extern const Command saveCommand;
const Command saveCommand = {
    .name = "save",
    .help = "Save the parameters to a configuration file",
    .argument = "FILE",
    .argumentHelp = "File to write, .mcf, then assignments to execute first",
    .form = "FILE [NAME=VALUE...]",
    .examples = {{"save line.mcf FG_WIDTH=2048", "a file with this width"},
                 {"save all.mcf", "the present values"}},
    .file = Command::File::write,
    .fileSuffix = ".mcf",
    .fewest = 1,
    .most = -1,
    .run = saveConfiguration,
    .scratch = Context::Scratch::wanted,
    .sets = Command::Sets::assignments,
    .showsValues = true,
};

} // namespace appletctl
