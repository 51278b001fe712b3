// What a change would do, tried on the scratch board; and the change itself after a question.

#include "appletctl/DesignPicture.h"
#include "appletctl/Facts.h"
#include "appletctl/Work.h"
#include "appletctl/assignments.h"
#include "appletctl/differences.h"
#include "appletctl/jobs.h"
#include "appletctl/loading.h"
#include "appletctl/reports.h"
#include "appletctl/text.h"
#include "appletctl/why.h"
#include "appletctl/writes.h"

#include <unistd.h>

#include <iostream>

namespace appletctl {
namespace {

using nlohmann::ordered_json;

std::vector<Facts> factsOf(Trial& trial) {
    std::vector<Facts> facts;
    for (const Parameter& parameter : trial.parameters().all())
        facts.push_back(factsNow(trial.instance(), parameter));
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
std::string addMoves(Trial& trial, const std::vector<Facts>& before, const std::vector<Facts>& after,
                     const Parameter* own, ordered_json& row) {
    auto& rows = row["moves"] = ordered_json::array();
    std::string text;
    for (std::size_t i = 0; i < before.size(); ++i) {
        const Parameter& parameter = trial.parameters().all()[i];
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

Report planAssignments(Trial& trial, const Words& words) {
    DesignPicture picture(trial);
    std::vector<Facts> facts = factsOf(trial);
    AssignmentHooks hooks;
    hooks.takeWrites = [&] { return takeWrites(trial.instance()); };
    hooks.isLeftOut = [](const Assignment& assignment) { return assignment.target.parameter->writesFile(); };
    hooks.after = [&](const Assignment& assignment, ordered_json& row) {
        DesignPicture now(trial);
        std::vector<Facts> factsThen = factsOf(trial);
        std::string text = addChanges(picture.changesTo(now), row);
        text += addMoves(trial, facts, factsThen, assignment.target.parameter, row);
        picture = std::move(now);
        facts = std::move(factsThen);
        return text;
    };
    hooks.wayOut = [&](const Assignment& assignment, ordered_json& row) {
        trial.keep();
        Probe probe(trial);
        return addWayOut(probe, assignment, row);
    };
    return carryOut(trial.instance(), trial.parameters(), words, hooks);
}

Report planFile(Trial& trial, const std::string& file) {
    Report report;
    report.document["file"] = toUtf8(file.c_str());
    FileKeys keys(trial);
    const std::vector<Facts> facts = factsOf(trial);
    const ConfigurationFile state = stateOf(trial.instance());
    const LoadOutcome outcome = loadAndCompare(trial, keys, file);
    const ConfigurationFile now(outcome.state);
    if (addDifferences(report, {{"BEFORE", "before", &state}, {"AFTER", "after", &now}}, trial.parameters(),
                       keys) == 0)
        report.text += "Nothing would change.\n";
    report.document["writes"] = outcome.writes;
    for (const std::string& line : outcome.writes)
        report.text += "  " + line + '\n';
    report.text += addChanges(outcome.changes, report.document);
    report.text += addMoves(trial, facts, outcome.facts, nullptr, report.document);
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

json planJob(Trial& trial, const json& arguments) {
    const auto words = arguments.at("words").get<Words>();
    return asMessage(isFile(words) ? planFile(trial, fileOf(words)) : planAssignments(trial, words));
}

Report planChanges(Context& context, const Words& words) {
    return askScratch(context, "plan", {{"words", words}});
}

Report applyChanges(Context& context, const Words& words) {
    const Options& options = context.options();
    if (!options.yes && isatty(STDIN_FILENO) == 0)
        throw UsageError(
            "'apply' asks before it does anything, and there is no terminal to ask on: say --yes");
    Report plan = planChanges(context, words);
    if (plan.exitCode != exitDone) {
        plan.problems.push_back("nothing was applied");
        return plan;
    }
    if (!options.json && !options.quiet) writeOut(plan.text);
    plan.text.clear();
    if (!options.yes && !isAgreed()) {
        plan.problems.push_back("nothing was applied");
        plan.exitCode = exitRefused;
        return plan;
    }
    Report done = isFile(words) ? loadConfiguration(context, words) : setParameters(context, words);
    ordered_json planned = std::move(plan.document);
    done.document["plan"] = std::move(planned);
    return done;
}

} // namespace appletctl
