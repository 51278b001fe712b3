// What a change would do, tried on the scratch board; and the change itself after a question.

#include "applet_tools/applet/ParameterState.h"
#include "applet_tools/applet/access_log.h"
#include "applet_tools/applet/assignments.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/DesignSnapshot.h"
#include "applet_tools/scratch/refusal.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/assignment_report.h"
#include "appletctl/commands/files/differences.h"
#include "appletctl/commands/files/loading.h"
#include "appletctl/commands/jobs.h"
#include "appletctl/commands/lines.h"
#include "appletctl/commands/reports.h"
#include "appletctl/commands/shared_options.h"

#include <CLI/CLI.hpp>

#include "vexo/fg_errors.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <set>

namespace appletctl {
namespace {

using nlohmann::ordered_json;

std::vector<ParameterState> factsOf(ScratchSession& session) {
    std::vector<ParameterState> facts;
    for (const Parameter& parameter : session.parameters().all())
        facts.push_back(currentState(session.instance(), parameter));
    return facts;
}

std::string changeLine(const DesignChange& change, const std::string& setBy) {
    return lineOf({"change", setBy, change.parameter, beforeInWords(change), afterInWords(change)},
                  "    " + inWords(change));
}

/** Lines on what has changed, and the same as members. */
std::string addChanges(const std::vector<DesignChange>& changes, const Parameter& setBy, ordered_json& row) {
    row["changes"] = asJson(changes);
    if (changes.empty()) return forPerson("  nothing changes in the design\n");
    std::string text = forPerson("  changes in the design:\n");
    for (const DesignChange& change : changes)
        text += changeLine(change, setBy.name);
    return text;
}

/** What others have from then on; `own` is the parameter that was set. The text leaves out the new values of the
 *  parameters that are shown already. */
std::string addMoves(ScratchSession& session, const std::vector<ParameterState>& before,
                     const std::vector<ParameterState>& after, const Parameter* own,
                     const std::set<std::string>& shown, ordered_json& row) {
    auto& rows = row["moves"] = ordered_json::array();
    std::string text;
    for (std::size_t i = 0; i < before.size(); ++i) {
        const Parameter& parameter = session.parameters().all()[i];
        if (&parameter == own) continue;
        for (const Move& move : movesBetween(parameter, before[i], after[i])) {
            ordered_json moved = {{"parameter", parameter.name}};
            moved.update(asJson(move));
            rows.push_back(std::move(moved));
            if (std::string_view(move.what) == "value" && shown.contains(parameter.name)) continue;
            text += lineOf({"moves", parameter.name, move.what, move.from, move.to},
                           "  " + parameter.name + ", " + move.what + ": " + move.from + " -> " + move.to);
        }
    }
    return text;
}

Report planAssignments(ScratchSession& session, const Words& words) {
    DesignSnapshot picture(session);
    std::vector<ParameterState> facts = factsOf(session);
    AssignmentAdditions hooks;
    hooks.takeWrites = [&] { return takeWrites(session.instance()); };
    hooks.areWritesNamed = true;
    hooks.isLeftOut = [](const Assignment& assignment) { return assignment.target.parameter->writesFile(); };
    hooks.after = [&](const Assignment& assignment, ordered_json& row) {
        DesignSnapshot now(session);
        std::vector<ParameterState> factsThen = factsOf(session);
        std::string text = addChanges(picture.changesTo(now), *assignment.target.parameter, row);
        text += addMoves(session, facts, factsThen, assignment.target.parameter, {}, row);
        picture = std::move(now);
        facts = std::move(factsThen);
        return text;
    };
    hooks.suggestion = [&](const Assignment& assignment, int, ordered_json& row) {
        session.keep();
        Probe probe(session);
        const Suggestion suggestion = suggestionFor(probe, assignment);
        row.update(suggestion.members);
        return suggestion.words;
    };
    return reportAssignments(session.instance(), session.parameters(), words, hooks);
}

/** What a load writes to the design, under the parameters that write it. */
class LoadWrites {
public:
    /** Of several parameters that write the same value of the design, one that the load changes is preferred. */
    LoadWrites(ScratchSession& session, const LoadOutcome& outcome, const std::set<std::string>& changed)
        : m_outcome(outcome) {
        session.rewind();
        for (const bool isChanged : {true, false})
            for (const Parameter& parameter : session.parameters().all())
                if (changed.contains(parameter.name) == isChanged) findWrites(session, parameter);
        for (const DesignChange& change : outcome.changes)
            m_changes[change.parameter] = &change;
    }

    std::string changesText() const {
        if (m_changes.empty()) return forPerson("Nothing changes in the design.\n");
        std::string text = forPerson("Changes in the design:\n");
        for (const auto& [writer, names] : grouped()) {
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
        for (const auto& [writer, names] : grouped()) {
            text += forPerson("  " + writer + '\n');
            for (const std::string& line : m_outcome.writes)
                if (std::ranges::find(names, writtenParameter(line)) != names.end())
                    text += isPlainOutput() ? writer + '\t' + accessLine(line) : "  " + accessLine(line);
        }
        return text;
    }

    /** "241 of 248 writes repeat what the design holds". */
    std::string repeatedText() const {
        const auto repeated = std::ranges::count_if(m_outcome.writes, [&](const std::string& line) {
            return !m_changes.contains(writtenParameter(line));
        });
        if (repeated == 0) return "";
        return numberText(repeated) + " of " + numberText(m_outcome.writes.size()) +
               " writes repeat what the design holds; --all shows them\n";
    }

private:
    struct Group {
        std::string writer;
        Words names; // of the design
    };

    /** Lets the setter write the value that the parameter holds. */
    void findWrites(ScratchSession& session, const Parameter& parameter) {
        if (elementCount(parameter) > 0 || !parameter.effectOfReading().empty() ||
            !parameter.effectOfWriting().empty() || parameter.writesFile())
            return;
        const ReadResult now = readValue(session.instance(), {&parameter});
        if (now.error != FG_OK) return;
        takeWrites(session.instance());
        writeValue(session.instance(), {&parameter}, now.value);
        for (const std::string& line : takeWrites(session.instance()))
            m_writers.try_emplace(writtenParameter(line), parameter.name);
    }

    /** All that was written or has changed. */
    std::vector<Group> grouped() const {
        Words names;
        for (const std::string& line : m_outcome.writes)
            names.push_back(writtenParameter(line));
        for (const auto& [name, change] : m_changes)
            names.push_back(name);
        std::vector<Group> groups;
        std::set<std::string> seen;
        for (const std::string& name : names) {
            if (!seen.insert(name).second) continue;
            const auto found = m_writers.find(name);
            const std::string writer = found != m_writers.end() ? found->second : "several parameters";
            auto group = std::ranges::find(groups, writer, &Group::writer);
            if (group == groups.end()) group = groups.insert(groups.end(), {writer, {}});
            group->names.push_back(name);
        }
        return groups;
    }

    const LoadOutcome& m_outcome;
    std::map<std::string, std::string> m_writers; // of each value of the design
    std::map<std::string, const DesignChange*> m_changes;
};

Report planFile(ScratchSession& session, const std::string& file, bool areAllWrites) {
    Report report;
    report.document["file"] = toUtf8(file.c_str());
    FileKeys keys(session);
    const std::vector<ParameterState> facts = factsOf(session);
    const ConfigurationFile state = stateOf(session.instance());
    const LoadOutcome outcome = loadAndCompare(session, keys, file);
    const ConfigurationFile now(outcome.state);
    if (addDifferences(report, {{"BEFORE", "before", &state}, {"AFTER", "after", &now}}, session.parameters(),
                       keys, NextCycle::remark) == 0)
        report.text += forPerson("Nothing would change.\n");
    std::set<std::string> changed;
    for (const ordered_json& row : report.document["differences"])
        changed.insert(row["name"].get<std::string>());
    report.document["writes"] = accessesAsJson(outcome.writes);
    report.document["changes"] = asJson(outcome.changes);
    std::string moves = addMoves(session, facts, outcome.facts, nullptr, changed, report.document);
    const LoadWrites writes(session, outcome, changed);
    if (areAllWrites) report.text += writes.writesText();
    report.text += writes.changesText();
    if (!moves.empty()) report.text += forPerson("Other parameters from then on:\n") + moves;
    if (!areAllWrites) report.text += forPerson(writes.repeatedText());
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
    layOutAsAsked(arguments);
    const auto words = arguments.at("words").get<Words>();
    return asMessage(isFile(words) ? planFile(session, fileOf(words), arguments.at("all").get<bool>())
                                   : planAssignments(session, words));
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
    return askScratch(context, "plan",
                      {{"words", words}, {"all", context.options().of<PlanOptions>().areAllWrites}});
}

} // namespace

extern const Command planCommand;
const Command planCommand = {
    .name = "plan",
    .help = "Show what assignments, or a load of a file, would do, without doing it",
    .argument = "NAME=VALUE|FILE",
    .argumentHelp = "As for the command set; or a configuration file",
    .examples = {{"plan FG_WIDTH=2048", "what a set would write"},
                 {"plan line.mcf", "what a load would change"}},
    .file = Command::File::readUnlessAssignment,
    .fileSuffix = ".mcf",
    .fewest = 1,
    .most = -1,
    .run = planChanges,
    .scratch = Context::Scratch::wanted,
    .addOptions = addPlanOptions,
    .showsValues = true,
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
    if (!options.json && !options.quiet) writeOut(laidOut(plan));
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
