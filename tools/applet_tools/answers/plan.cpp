#include "applet_tools/answers/plan.h"

#include "applet_tools/applet/access_log.h"
#include "applet_tools/applet/assignments.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/probe/refusal.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace applet_tools {
namespace {

/** The moves of all parameters except `own`. */
std::vector<ParameterMove> movesOf(const ParameterList& parameters, const std::vector<ParameterState>& before,
                                   const std::vector<ParameterState>& after, const Parameter* own) {
    std::vector<ParameterMove> moves;
    for (std::size_t i = 0; i < before.size(); ++i) {
        const Parameter& parameter = parameters.all()[i];
        if (&parameter == own) continue;
        for (const Move& move : movesBetween(parameter, before[i], after[i]))
            moves.push_back({parameter.name, move});
    }
    return moves;
}

/** Finds which setter writes which value of the design, by setting each parameter to its present value. */
class WriterSearch {
public:
    /** The parameters with these names are tried first. */
    WriterSearch(ScratchSession& session, const std::set<std::string>& preferred) {
        session.rewind();
        for (const bool isPreferred : {true, false})
            for (const Parameter& parameter : session.parameters().all())
                if (preferred.contains(parameter.name) == isPreferred) findWrites(session, parameter);
    }

    /** The design's values grouped by writer; groups and values in the order of first occurrence. */
    std::vector<Writer> grouped(const Words& names) const {
        std::vector<Writer> writers;
        std::set<std::string> seen;
        for (const std::string& name : names) {
            if (!seen.insert(name).second) continue;
            const auto found = m_writers.find(name);
            const std::string parameter = found != m_writers.end() ? found->second : "several parameters";
            auto writer = std::ranges::find(writers, parameter, &Writer::parameter);
            if (writer == writers.end()) writer = writers.insert(writers.end(), {parameter, {}});
            writer->names.push_back(name);
        }
        return writers;
    }

private:
    void findWrites(ScratchSession& session, const Parameter& parameter) {
        if (elementCount(parameter) > 0 || !parameter.effectOfReading().empty() ||
            !parameter.effectOfWriting().empty() || parameter.writesFile())
            return;
        const ReadResult now = readValue(session.instance(), {&parameter});
        if (now.error != FG_OK) return;
        takeAccessLog(session.instance());
        writeValue(session.instance(), {&parameter}, now.value);
        for (const std::string& line : takeAccessLog(session.instance()))
            m_writers.try_emplace(loggedAccess(line).parameter, parameter.name);
    }

    std::map<std::string, std::string> m_writers; // by value of the design
};

/** All values that were written or have changed, possibly with duplicates. */
Words touchedNames(const LoadOutcome& load) {
    Words names;
    for (const std::string& line : load.writes)
        names.push_back(loggedAccess(line).parameter);
    std::set<std::string> changed;
    for (const DesignChange& change : load.changes)
        changed.insert(change.parameter);
    names.insert(names.end(), changed.begin(), changed.end());
    return names;
}

} // namespace

nlohmann::ordered_json asJson(const std::vector<ParameterMove>& moves) {
    auto rows = nlohmann::ordered_json::array();
    for (const auto& [parameter, move] : moves) {
        nlohmann::ordered_json row = {{"parameter", parameter}};
        row.update(asJson(move));
        rows.push_back(std::move(row));
    }
    return rows;
}

ChangeWatch::ChangeWatch(ScratchSession& session)
    : m_session(session)
    , m_design(session)
    , m_states(statesOf(session.instance(), session.parameters())) {}

ChangeWatch::Changes ChangeWatch::take(const Parameter& own) {
    DesignSnapshot design(m_session);
    std::vector<ParameterState> states = statesOf(m_session.instance(), m_session.parameters());
    Changes changes{m_design.changesTo(design), movesOf(m_session.parameters(), m_states, states, &own)};
    m_design = std::move(design);
    m_states = std::move(states);
    return changes;
}

namespace {

void addLine(std::string& text, const std::string& line) { text += (text.empty() ? "" : "\n") + line; }

void addChanges(const ChangeWatch::Changes& changes, std::string& words, nlohmann::ordered_json& row) {
    for (const DesignChange& change : changes.design)
        addLine(words, "  " + inWords(change));
    for (const auto& [parameter, move] : changes.moves)
        addLine(words, "  " + parameter + ", " + move.what + ": " + move.from + " -> " + move.to);
    row["changes"] = asJson(changes.design);
    row["moves"] = asJson(changes.moves);
}

} // namespace

json assignmentsPlanJob(ScratchSession& session, const json& arguments) {
    AssignmentsPlan plan;
    ChangeWatch watch(session);
    const auto add = [&](const AssignmentResult& result) {
        const auto& [target, text, value] = result.assignment;
        nlohmann::ordered_json row = asJson(result);
        if (result.isLeftOut) {
            addLine(plan.words, target.name() + " would write a file; it was left out");
        } else if (result.code == FG_OK) {
            const Value& taken = result.actual.error == FG_OK ? result.actual.value : value;
            addLine(plan.words, target.name() + " = " + toUtf8(valueWithUnit(*target.parameter, taken)));
            addChanges(watch.take(*target.parameter), plan.words, row);
        } else {
            std::string refusal = refusalInWords(result);
            session.keep();
            Probe probe(session);
            const Suggestion suggestion = suggestionFor(probe, result.assignment);
            refusal += suggestion.words();
            if (suggestion.members.is_object()) row.update(suggestion.members);
            row["error"]["message"] = refusal;
            addLine(plan.words, refusal);
        }
        plan.rows.push_back(std::move(row));
    };
    const AssignmentHooks hooks{
        .takeWrites = [&] { return takeAccessLog(session.instance()); },
        .isLeftOut = [](const Assignment& assignment) { return assignment.target.parameter->writesFile(); },
        .after = add};
    const auto words = arguments.at("assignments").get<Words>();
    plan.notSet = applyAssignments(session.instance(), session.parameters(), words, hooks).notSet;
    return {{"rows", plan.rows.dump()}, {"notSet", plan.notSet}, {"words", plan.words}};
}

AssignmentsPlan askPlan(LiveSession& live, const Words& assignments) {
    const json answer = live.scratch().ask("planAssignments", {{"assignments", assignments}});
    return {nlohmann::ordered_json::parse(answer["rows"].get<std::string>()), answer["notSet"].get<Words>(),
            answer["words"].get<std::string>()};
}

FilePlan planFile(ScratchSession& session, const std::string& file) {
    FileKeys keys(session);
    const std::vector<ParameterState> states = statesOf(session.instance(), session.parameters());
    const ConfigurationFile before = stateOf(session.instance());
    FilePlan plan{loadAndCompare(session, keys, file), {}, {}, {}};
    const ConfigurationFile after(plan.load.state);
    plan.differences = differencesOf({{"BEFORE", "before", &before}, {"AFTER", "after", &after}},
                                     session.parameters(), keys);
    plan.moves = movesOf(session.parameters(), states, plan.load.states, nullptr);
    std::set<std::string> changed;
    for (const Difference& difference : plan.differences)
        changed.insert(difference.parameter);
    plan.writers = WriterSearch(session, changed).grouped(touchedNames(plan.load));
    return plan;
}

} // namespace applet_tools
