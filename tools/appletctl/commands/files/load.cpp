#include "appletctl/base/text.h"
#include "appletctl/commands/files/check.h"
#include "appletctl/commands/files/differences.h"
#include "appletctl/scratch/CommandRun.h"

namespace appletctl {
namespace {

/** The board may be at odds with what the scratch board has told, say where it fails. */
void addSurprises(CommandRun& work, const Check& expected, int code, const ConfigurationFile& now,
                  ScratchBoard& scratch) {
    Report unlike;
    const bool areOthers =
        askDifferences(unlike, {{"EXPECTED", "expected", &expected.state}, {"NOW", "now", &now}}, scratch) >
        0;
    if (code == expected.code && !areOthers) return;
    work.refuse("the board did not take the file as the scratch board did: the load answers " +
                codeInWords(code) + (areOthers ? "; the values differ:" : ""));
    work.report.text += unlike.text;
    work.report.document["unexpected"] = unlike.document["differences"];
}

} // namespace

Report loadConfiguration(Context& context, const Words& words) {
    requireBoard(context.options(), "load");
    const std::string& file = fileOf(words);
    CommandRun work(context, behindFirst(words));
    if (work.isRefused()) return work.report;
    work.report.document["file"] = toUtf8(file.c_str());
    ScratchBoard& scratch = context.scratch();
    const Check check = askCheck(scratch, file);
    if (context.options().strict && check.report.exitCode != exitDone) {
        append(work.report, check.report);
        work.refuse("--strict: nothing was loaded");
        return work.report;
    }
    const ConfigurationFile before = stateOf(work.instance);
    const int code = work.instance.applet().Fg_loadConfig(work.instance.fg(), file.c_str());
    const ConfigurationFile now = stateOf(work.instance);
    if (askDifferences(work.report, {{"BEFORE", "before", &before}, {"NOW", "now", &now}}, scratch,
                       NextCycle::same) == 0)
        work.report.text += forPerson("Nothing has changed.\n");
    append(work.report, check.report);
    addSurprises(work, check, code, now, scratch);
    addAssumed(work.report, context.assumed());
    return work.report;
}

} // namespace appletctl
