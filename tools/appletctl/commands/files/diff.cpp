#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/report_text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/file_reports.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace appletctl {
namespace {

/** A word with an equals sign is an assignment, except for the first word, which is always a file. */
bool isSecondFile(const Words& words) { return words.size() > 1 && !isAssignment(words[1]); }

std::string titleOf(const std::string& file) { return printable(file); }

struct DiffOptions {
    bool live = false; /**< --live: with the parameters as well */
};

void addLive(CLI::App& command, Options& options) {
    command.add_flag("--live", options.own<DiffOptions>().live, "Show the parameters beside two files");
}

Report compareConfigurations(Context& context, const Words& words) {
    const std::string& first = fileOf(words);
    const bool areTwoFiles = isSecondFile(words);
    const bool isWithLive = !areTwoFiles || context.options().of<DiffOptions>().live;
    const Words assignments(words.begin() + (areTwoFiles ? 2 : 1), words.end());
    if (!isWithLive && !assignments.empty())
        throw UsageError("a comparison of two files takes no assignments and no third file; with "
                         "--live compares them with the parameters");
    if (isWithLive) requireBoard(context.options(), "diff");
    std::vector<Side> sides{{titleOf(first), "first", nullptr, first}};
    std::optional<ConfigurationFile> now;
    if (areTwoFiles) sides.push_back({titleOf(words[1]), "second", nullptr, words[1]});
    Report report;
    if (isWithLive) {
        CommandRun run(context, assignments);
        report = run.report;
        if (run.isRefused()) return report;
        sides.push_back({"NOW", "now", &now.emplace(stateOf(run.instance))});
    }
    const std::vector<Difference> differences = askDifferences(context.bareScratch(), sides);
    addDifferences(report, sides, differences, Sides::apart);
    if (differences.empty())
        report.text += forPerson("The values are the same.\n");
    else if (!std::ranges::all_of(differences, &Difference::isNextCycle))
        report.exitCode = exitDifferent;
    return report;
}

} // namespace

extern const Command diffCommand;
const Command diffCommand = {
    .name = "diff",
    .help = "Compare a configuration file with another one, or with the parameters",
    .argument = "FILE",
    .argumentHelp = "File, then another one or assignments to execute first",
    .form = "FILE [FILE] [NAME=VALUE...]",
    .examples = {{"diff line.mcf", "with the present parameters"}, {"diff old.mcf new.mcf", "two files"}},
    .file = Command::File::read,
    .fileSuffix = ".mcf",
    .mostFiles = 2,
    .fewest = 1,
    .most = -1,
    .run = compareConfigurations,
    .scratch = Context::Scratch::wanted,
    .addOptions = addLive,
    .sets = Command::Sets::assignments,
    .showsValues = true,
    .withoutBoard = "for two files without --live",
};

} // namespace appletctl
