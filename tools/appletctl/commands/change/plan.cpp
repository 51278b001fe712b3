// What a change would do, tried on the scratch board; and the change itself after a question.

#include "appletctl/applet/ParameterState.h"
#include "appletctl/applet/access_log.h"
#include "appletctl/applet/assignments.h"
#include "appletctl/base/text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/change/why.h"
#include "appletctl/commands/files/differences.h"
#include "appletctl/commands/files/loading.h"
#include "appletctl/commands/jobs.h"
#include "appletctl/commands/shared_options.h"
#include "appletctl/scratch/CommandRun.h"
#include "appletctl/scratch/DesignSnapshot.h"
#include "appletctl/scratch/reports.h"

#include <unistd.h>

#include <iostream>

namespace appletctl {
namespace {

using nlohmann::ordered_json;

std::vector<ParameterState> factsOf(ScratchSession& session) {
    std::vector<ParameterState> facts;
    for (const Parameter& parameter : session.parameters().all())
        facts.push_back(currentState(session.instance(), parameter));
    return facts;
}

/** Lines on what has changed, and the same as members. */
std::string addChanges(const std::vector<DesignChange>& changes, ordered_json& row) {
    row["changes"] = asJson(changes);
    if (changes.empty()) return "  nothing changes in the design\n";
    std::string text = "  changes in the design:\n";
    for (const DesignChange& change : changes)
        text += "    " + inWords(change) + '\n';
    return text;
}

/** What others have from then on; `own` is the parameter that was set. */
std::string addMoves(ScratchSession& session, const std::vector<ParameterState>& before,
                     const std::vector<ParameterState>& after, const Parameter* own, ordered_json& row) {
    auto& rows = row["moves"] = ordered_json::array();
    std::string text;
    for (std::size_t i = 0; i < before.size(); ++i) {
        const Parameter& parameter = session.parameters().all()[i];
        if (&parameter == own) continue;
        for (const Move& move : movesBetween(parameter, before[i], after[i])) {
            ordered_json moved = {{"parameter", parameter.name}};
            moved.update(asJson(move));
            rows.push_back(std::move(moved));
            text += "  " + parameter.name + ", " + move.what + ": " + move.from + " -> " + move.to + '\n';
        }
    }
    return text;
}

Report planAssignments(ScratchSession& session, const Words& words) {
    DesignSnapshot picture(session);
    std::vector<ParameterState> facts = factsOf(session);
    AssignmentHooks hooks;
    hooks.takeWrites = [&] { return takeWrites(session.instance()); };
    hooks.isLeftOut = [](const Assignment& assignment) { return assignment.target.parameter->writesFile(); };
    hooks.after = [&](const Assignment& assignment, ordered_json& row) {
        DesignSnapshot now(session);
        std::vector<ParameterState> factsThen = factsOf(session);
        std::string text = addChanges(picture.changesTo(now), row);
        text += addMoves(session, facts, factsThen, assignment.target.parameter, row);
        picture = std::move(now);
        facts = std::move(factsThen);
        return text;
    };
    hooks.suggestion = [&](const Assignment& assignment, ordered_json& row) {
        session.keep();
        Probe probe(session);
        return addSuggestion(probe, assignment, row);
    };
    return applyAssignments(session.instance(), session.parameters(), words, hooks);
}

Report planFile(ScratchSession& session, const std::string& file) {
    Report report;
    report.document["file"] = toUtf8(file.c_str());
    FileKeys keys(session);
    const std::vector<ParameterState> facts = factsOf(session);
    const ConfigurationFile state = stateOf(session.instance());
    const LoadOutcome outcome = loadAndCompare(session, keys, file);
    const ConfigurationFile now(outcome.state);
    if (addDifferences(report, {{"BEFORE", "before", &state}, {"AFTER", "after", &now}}, session.parameters(),
                       keys) == 0)
        report.text += "Nothing would change.\n";
    report.document["writes"] = outcome.writes;
    for (const std::string& line : outcome.writes)
        report.text += "  " + line + '\n';
    report.text += addChanges(outcome.changes, report.document);
    report.text += addMoves(session, facts, outcome.facts, nullptr, report.document);
    addFindings(report, outcome.findings);
    return report;
}

/** A single word without an equals sign is the name of a file. */
bool isFile(const Words& words) { return words.size() == 1 && words.front().find('=') == std::string::npos; }

/** Asks on the terminal. */
bool isAgreed() {
    std::cerr << "apply? [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

} // namespace

json planJob(ScratchSession& session, const json& arguments) {
    const auto words = arguments.at("words").get<Words>();
    return asMessage(isFile(words) ? planFile(session, fileOf(words)) : planAssignments(session, words));
}

namespace {

Report planChanges(Context& context, const Words& words) {
    return askScratch(context, "plan", {{"words", words}});
}

} // namespace

extern const Command planCommand;
const Command planCommand = {
    .name = "plan",
    .help = "Show what assignments, or a load of a file, would do, without doing it",
    .argument = "NAME=VALUE|FILE",
    .argumentHelp = "As for the command set; or a configuration file",
    .fewest = 1,
    .most = -1,
    .run = planChanges,
    .scratch = Context::Scratch::wanted,
};

namespace {

Report applyChanges(Context& context, const Words& words) {
    const Options& options = context.options();
    const bool isAsked = !options.of<YesOption>().isGiven;
    if (isAsked && isatty(STDIN_FILENO) == 0)
        throw UsageError(
            "'apply' asks before it does anything, and there is no terminal to ask on: say --yes");
    Report plan = planChanges(context, words);
    if (plan.exitCode != exitDone) {
        plan.problems.push_back("nothing was applied");
        return plan;
    }
    if (!options.json && !options.quiet) writeOut(plan.text);
    plan.text.clear();
    if (isAsked && !isAgreed()) {
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
    .help = "Show what they would do, and do it after a question",
    .argument = "NAME=VALUE|FILE",
    .argumentHelp = "As for the command plan",
    .fewest = 1,
    .most = -1,
    .run = applyChanges,
    .scratch = Context::Scratch::wanted,
    .addOptions = addYes,
};

} // namespace appletctl
