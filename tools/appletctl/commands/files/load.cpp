#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/report_text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/file_reports.h"
#include "appletctl/commands/reports.h"

#include <CLI/CLI.hpp>

namespace appletctl {
namespace {

/** The board may behave differently from the scratch board, for example if it fails. */
void addSurprises(CommandRun& run, const LoadCheck& expected, int code, const ConfigurationFile& now,
                  ScratchBoard& scratch) {
    const std::vector<Side> sides{{"EXPECTED", "expected", &expected.state}, {"NOW", "now", &now}};
    const std::vector<Difference> others = askDifferences(scratch, sides);
    if (code == expected.code && others.empty()) return;
    run.refuse("the board did not take the file as the scratch board did: the load answers " +
               codeInWords(code) + (others.empty() ? "" : "; the values differ:"));
    Report unlike;
    addDifferences(unlike, sides, others, Sides::apart);
    run.report.text += unlike.text;
    run.report.document["unexpected"] = unlike.document["differences"];
}

struct LoadOptions {
    bool strict = false; /**< --strict */
};

void addStrict(CLI::App& command, Options& options) {
    command.add_flag("--strict", options.own<LoadOptions>().strict,
                     "Load nothing if anything of the file would be lost");
}

Report loadFile(Context& context, const Words& words) {
    requireBoard(context.options(), "load");
    const std::string& file = fileOf(words);
    CommandRun run(context, behindFirst(words));
    if (run.isRefused()) return run.report;
    run.report.document["file"] = toUtf8(file);
    ScratchBoard& scratch = context.scratch();
    const LoadCheck check = askCheck(scratch, file);
    if (context.options().of<LoadOptions>().strict && !check.losesNothing()) {
        addFindings(run.report, check.findings);
        run.refuse("--strict: nothing was loaded");
        return run.report;
    }
    const ConfigurationFile before = stateOf(run.instance);
    const int code = loadConfiguration(run.instance, file);
    const ConfigurationFile now = stateOf(run.instance);
    const std::vector<Side> sides{{"BEFORE", "before", &before}, {"NOW", "now", &now}};
    const std::vector<Difference> changes = askDifferences(scratch, sides);
    addDifferences(run.report, sides, changes, Sides::inTime);
    if (changes.empty() && code == FG_OK) run.report.text += forPerson("Nothing has changed.\n");
    addFindings(run.report, check.findings);
    addSurprises(run, check, code, now, scratch);
    addAssumed(run.report, context.assumed());
    return run.report;
}

} // namespace

extern const Command loadCommand;
const Command loadCommand = {
    .name = "load",
    .help = "Load a configuration file, and show what was lost",
    .argument = "FILE",
    .argumentHelp = "File to read, then assignments to execute first",
    .form = "FILE [NAME=VALUE...]",
    .examples = {{"load line.mcf", "and say what was lost"},
                 {"load --strict line.mcf", "only if nothing would be lost"}},
    .file = Command::File::read,
    .fileSuffix = ".mcf",
    .fewest = 1,
    .most = -1,
    .run = loadFile,
    .scratch = Context::Scratch::wanted,
    .addOptions = addStrict,
    .sets = Command::Sets::always,
    .showsValues = true,
};

} // namespace appletctl
