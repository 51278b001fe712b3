#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/report_text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/file_reports.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <iterator>

namespace appletctl {
namespace {

/** Texts that are longer than a save writes. */
std::vector<Finding> shortenedTexts(Instance& instance, const ParameterList& parameters,
                                    const ConfigurationFile& saved) {
    std::vector<Finding> findings;
    for (const auto& line : saved.values()) {
        const Parameter& parameter = parameters.find(std::string(line.key));
        if (parameter.kind() != REGISTER_KIND_STRING) continue;
        const ReadResult reading = readValue(instance, {&parameter});
        const auto* text = std::get_if<std::string>(&reading.value);
        if (reading.error != FG_OK || text == nullptr || text->size() <= line.value.size()) continue;
        findings.push_back({FindingKind::cut, parameter.name,
                            parameter.name + ": its text has " + numberText(text->size()) +
                                " bytes, and a save writes the first " + numberText(line.value.size())});
    }
    return findings;
}

Report saveConfiguration(Context& context, const Words& words) {
    requireBoard(context.options(), "save");
    const std::string& file = fileOf(words);
    requireConfigurationName(file);
    CommandRun run(context, behindFirst(words));
    if (run.isRefused()) return run.report;
    run.report.document["file"] = toUtf8(file);
    const ConfigurationFile saved = stateOf(run.instance);
    writeFile(file, saved.text());
    run.report.text += lineOf({"written", printable(file)},
                              shownFile(file) + ": " + numberText(saved.values().size()) + " values written");
    run.report.document["values"] = saved.values().size();
    ScratchBoard& scratch = context.scratchAtDefaults();
    const std::vector<Side> sides{{"DEFAULT", "default", nullptr}, {"SAVED", "saved", &saved}};
    const std::vector<Difference> changes = askDifferences(scratch, sides);
    addDifferences(run.report, sides, changes, Sides::apart);
    if (changes.empty()) run.report.text += forPerson("All of them are defaults.\n");
    std::vector<Finding> findings = shortenedTexts(run.instance, run.parameters, saved);
    const bool isComplete = findings.empty();
    const LoadCheck check = askCheck(scratch, file, saved);
    std::ranges::copy(check.findings, std::back_inserter(findings));
    if (!isComplete || !check.losesNothing())
        run.refuse(shownFile(file) + (isComplete ? " is complete" : " was written") +
                   ", but a load does not restore all of it:");
    addFindings(run.report, findings);
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
