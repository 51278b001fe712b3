// Predicts a change on the scratch board; "apply" then makes it after asking.

#include "applet_tools/answers/plan.h"
#include "applet_tools/applet/access_log.h"
#include "applet_tools/applet/assignments.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/probe/refusal.h"
#include "appletctl/base/confirm.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/print.h"
#include "appletctl/base/report_text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/assignment_report.h"
#include "appletctl/commands/file_reports.h"
#include "appletctl/commands/jobs.h"
#include "appletctl/commands/lines.h"
#include "appletctl/commands/reports.h"
#include "appletctl/commands/shared_options.h"

#include <CLI/CLI.hpp>

#include "vexo/fg_errors.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>

namespace appletctl {
namespace {

using nlohmann::ordered_json;

std::string changeLine(const DesignChange& change, const std::string& setBy) {
    return lineOf({"change", setBy, change.parameter, beforeInWords(change), afterInWords(change)},
                  "    " + inWords(change));
}

/** Lines for the changes, and the same as members. */
std::string addChanges(const std::vector<DesignChange>& changes, const Parameter& setBy, ordered_json& row) {
    row["changes"] = asJson(changes);
    if (changes.empty()) return forPerson("  nothing changes in the design\n");
    std::string text = forPerson("  changes in the design:\n");
    for (const DesignChange& change : changes)
        text += changeLine(change, setBy.name);
    return text;
}

/** The moves of other parameters. Leaves out the new values of parameters that are shown already. */
std::string movesText(const std::vector<ParameterMove>& moves, const std::set<std::string>& shown) {
    std::string text;
    for (const auto& [parameter, move] : moves) {
        if (move.what == "value" && shown.contains(parameter)) continue;
        text += lineOf({"moves", parameter, move.what, move.from, move.to},
                       "  " + parameter + ", " + move.what + ": " + move.from + " -> " + move.to);
    }
    return text;
}

Report planAssignments(ScratchSession& session, const Words& words) {
    ChangeWatch watch(session);
    AssignmentAdditions additions;
    additions.takeWrites = [&] { return takeAccessLog(session.instance()); };
    additions.areWritesNamed = true;
    additions.isLeftOut = [](const Assignment& assignment) {
        return assignment.target.parameter->writesFile();
    };
    additions.after = [&](const Assignment& assignment, ordered_json& row) {
        const Parameter& parameter = *assignment.target.parameter;
        const auto [design, moves] = watch.take(parameter);
        const std::string text = addChanges(design, parameter, row);
        row["moves"] = asJson(moves);
        return text + movesText(moves, {});
    };
    additions.suggestion = [&](const Assignment& assignment, int, ordered_json& row) {
        session.keep();
        Probe probe(session);
        const Suggestion suggestion = suggestionFor(probe, assignment);
        row.update(suggestion.members);
        return suggestion.words();
    };
    return reportAssignments(session.instance(), session.parameters(), words, additions);
}

/** The writes of a load to the design, grouped by the parameter that makes them. */
class LoadWrites {
public:
    explicit LoadWrites(const FilePlan& plan) : m_plan(plan) {
        for (const DesignChange& change : plan.load.changes)
            m_changes[change.parameter] = &change;
    }

    std::string changesText() const {
        if (m_changes.empty()) return forPerson("Nothing changes in the design.\n");
        std::string text = forPerson("Changes in the design:\n");
        for (const auto& [writer, names] : m_plan.writers) {
            std::string lines;
            for (const std::string& name : names)
                if (const auto change = m_changes.find(name); change != m_changes.end())
                    lines += changeLine(*change->second, writer);
            if (!lines.empty()) text += forPerson("  " + writer + '\n') + lines;
        }
        return text;
    }

    std::string writesText() const {
        std::string text = forPerson("All writes, in the order of each parameter's first one:\n");
        for (const auto& [writer, names] : m_plan.writers) {
            text += forPerson("  " + writer + '\n');
            for (const std::string& line : m_plan.load.writes)
                if (std::ranges::find(names, loggedAccess(line).parameter) != names.end())
                    text += isPlainOutput() ? writer + '\t' + accessLine(line) : "  " + accessLine(line);
        }
        return text;
    }

    /** "241 of 248 writes repeat what the design holds". */
    std::string repeatedText() const {
        const Words& writes = m_plan.load.writes;
        const auto repeated = std::ranges::count_if(writes, [&](const std::string& line) {
            return !m_changes.contains(loggedAccess(line).parameter);
        });
        if (repeated == 0) return "";
        return numberText(repeated) + " of " + numberText(writes.size()) +
               " writes repeat what the design holds; --all shows them\n";
    }

private:
    const FilePlan& m_plan;
    std::map<std::string, const DesignChange*> m_changes;
};

Report reportOf(const FilePlan& plan, const std::string& file, bool areAllWrites) {
    Report report;
    report.document["file"] = toUtf8(file);
    addDifferences(report, {{"BEFORE", "before", nullptr}, {"AFTER", "after", nullptr}}, plan.differences,
                   Sides::inTime);
    const bool isLoaded =
        std::ranges::find(plan.load.findings, FindingKind::file, &Finding::kind) == plan.load.findings.end();
    if (plan.differences.empty() && isLoaded) report.text += forPerson("Nothing would change.\n");
    report.document["writes"] = accessesAsJson(plan.load.writes);
    report.document["changes"] = asJson(plan.load.changes);
    report.document["moves"] = asJson(plan.moves);
    std::set<std::string> shown;
    for (const Difference& difference : plan.differences)
        shown.insert(difference.parameter);
    if (!isLoaded) { // "nothing changes" would be misleading for an invalid file
        addFindings(report, plan.load.findings);
        return report;
    }
    const LoadWrites writes(plan);
    if (areAllWrites) report.text += writes.writesText();
    report.text += writes.changesText();
    if (const std::string moves = movesText(plan.moves, shown); !moves.empty())
        report.text += forPerson("Other parameters from then on:\n") + moves;
    if (!areAllWrites) report.text += forPerson(writes.repeatedText());
    addFindings(report, plan.load.findings);
    return report;
}

/** A single word without an equals sign is a file name. */
bool isFile(const Words& words) { return words.size() == 1 && !isAssignment(words.front()); }

} // namespace

json planJob(ScratchSession& session, const json& arguments) {
    layOutAsAsked(arguments);
    const auto words = arguments.at("words").get<Words>();
    if (!isFile(words)) return asMessage(planAssignments(session, words));
    const std::string& file = fileOf(words);
    return asMessage(reportOf(planFile(session, file), file, arguments.at("all").get<bool>()));
}

namespace {

struct PlanOptions {
    bool areAllWrites = false; /**< --all: with the writes that change nothing */
};

void addPlanOptions(CLI::App& command, Options& options) {
    command.add_flag("--all", options.own<PlanOptions>().areAllWrites,
                     "Of a file: all writes, also those that repeat what the design holds");
}

Report planChanges(Context& context, const Words& words) {
    Report report = askReport(context.scratch(), "plan",
                              {{"words", words}, {"all", context.options().of<PlanOptions>().areAllWrites}});
    addAssumed(report, context, words, {});
    return report;
}

/** Throws UsageError for a file together with assignments, as their order would be ambiguous. */
void refuseFileBesideAssignments(const Words& words) {
    const auto file = std::ranges::find_if_not(words, isAssignment);
    std::error_code error;
    if (words.size() < 2 || file == words.end() || !std::filesystem::is_regular_file(*file, error)) return;
    const auto assignment = std::ranges::find_if(words, isAssignment);
    if (assignment == words.end()) throw UsageError("'plan' takes one file, or assignments");
    const std::string name = asShellWord(*file), other = asShellWord(*assignment);
    throw UsageError(inQuotedWord(*file) +
                     " is not of the form NAME=VALUE, and a file is planned alone: say '" + other +
                     " --from " + name + "' for assignments after a load of the file, '" + name + " --with " +
                     other + "' for a load after them");
}

Report planWords(Context& context, const Words& words) {
    refuseFileBesideAssignments(words);
    return planChanges(context, words);
}

} // namespace

extern const Command planCommand;
const Command planCommand = {
    .name = "plan",
    .help = "Show the effect of assignments, or of a load of a file, without making it",
    .argument = "NAME=VALUE|FILE",
    .argumentHelp = "As for the command set; or a configuration file",
    .form = "NAME=VALUE...|FILE",
    .examples = {{"plan FG_WIDTH=2048", "what a set would write"},
                 {"plan line.mcf", "what a load would change"}},
    .file = Command::File::readUnlessAssignment,
    .fileSuffix = ".mcf",
    .fewest = 1,
    .most = -1,
    .run = planWords,
    .scratch = Context::Scratch::wanted,
    .addOptions = addPlanOptions,
    .showsValues = true,
};

namespace {

Report applyChanges(Context& context, const Words& words) {
    const Options& options = context.options();
    if (isFile(words)) requireBoard(options, "apply FILE");
    const bool isAsked = !options.of<YesOption>().isGiven;
    if (isAsked && isatty(STDIN_FILENO) == 0)
        throw UsageError(
            "'apply' asks before it does anything, and there is no terminal to ask on: give --yes");
    Report plan = planChanges(context, words);
    if (plan.exitCode != exitDone) {
        plan.problems.push_back("nothing was applied");
        return plan;
    }
    if (!options.json && !options.quiet) writeOut(laidOut(plan));
    plan.text.clear();
    if (isAsked && !isConfirmed("apply?")) {
        plan.problems.push_back("nothing was applied");
        plan.exitCode = exitRefused;
        return plan;
    }
    Report done = runCommandNamed(context, isFile(words) ? "load" : "set", words);
    ordered_json planned = std::move(plan.document);
    done.document["plan"] = std::move(planned);
    return done;
}

} // namespace

extern const Command applyCommand;
const Command applyCommand = {
    .name = "apply",
    .help = "Show the same as 'plan', then ask and do it",
    .argument = "NAME=VALUE|FILE",
    .argumentHelp = "As for the command plan",
    .form = "NAME=VALUE...|FILE",
    .examples = {{"apply FG_WIDTH=2048", "show it, ask, do it"},
                 {"apply --yes line.mcf", "show it and do it"}},
    .file = Command::File::readUnlessAssignment,
    .fileSuffix = ".mcf",
    .fewest = 1,
    .most = -1,
    .run = applyChanges,
    .scratch = Context::Scratch::wanted,
    .addOptions = addPlanOptions,
    .sets = Command::Sets::afterOwnQuestion,
};

} // namespace appletctl
