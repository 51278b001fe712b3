#include "appletctl/base/text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/files/check.h"
#include "appletctl/commands/files/differences.h"
#include "appletctl/scratch/CommandRun.h"

namespace appletctl {
namespace {

std::string whyNotSaved(const std::string& file, int code) {
    const bool isNamedSo = file.find(".mcf") != std::string::npos;
    return shownFile(file) + " was not written: " + codeInWords(code) +
           (isNamedSo ? "; see whether its folder exists and may be written"
                      : "; .mcf must be part of its name");
}

Report saveConfiguration(Context& context, const Words& words) {
    requireBoard(context.options(), "save");
    const std::string& file = fileOf(words);
    CommandRun work(context, behindFirst(words));
    if (work.isRefused()) return work.report;
    work.report.document["file"] = toUtf8(file.c_str());
    const int code = work.instance.applet().Fg_saveConfig(work.instance.fg(), file.c_str());
    if (code != FG_OK) {
        work.refuse(whyNotSaved(file, code));
        return work.report;
    }
    // The applet reports no failed write.
    const std::size_t expected = stateOf(work.instance).values().size();
    const ConfigurationFile saved(textOfFile(file).value_or(""));
    if (saved.values().size() != expected) {
        work.refuse(shownFile(file) +
                    " was written, but does not read back as a whole: " + numberText(saved.values().size()) +
                    " of " + numberText(expected) + " values; see whether the disk is full");
        return work.report;
    }
    work.report.text += shownFile(file) + ": " + numberText(expected) + " values written\n";
    work.report.document["values"] = expected;
    ScratchBoard& scratch = context.scratchAtDefaults();
    if (askDifferences(work.report, {{"DEFAULT", "default", nullptr}, {"SAVED", "saved", &saved}}, scratch) ==
        0)
        work.report.text += "All of them are defaults.\n";
    const Check check = askCheck(scratch, file);
    if (check.report.exitCode != exitDone)
        work.refuse(shownFile(file) + " is complete, but a load does not restore all of it:");
    append(work.report, check.report);
    return work.report;
}

} // namespace

extern const Command saveCommand;
const Command saveCommand = {
    .name = "save",
    .help = "Save the parameters to a configuration file",
    .argument = "FILE",
    .argumentHelp = "File to write, .mcf, then assignments to carry out before",
    .fewest = 1,
    .most = -1,
    .run = saveConfiguration,
    .scratch = Context::Scratch::wanted,
};

} // namespace appletctl
