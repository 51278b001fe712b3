#include "applet_tools/answers/dependencies.h"

#include "applet_tools/applet/access_log.h"
#include "applet_tools/applet/assignments.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/message_rows.h"
#include "applet_tools/scratch/probe/refusal.h"

#include "vexo/fg_errors.h"

#include <set>
#include <utility>

namespace applet_tools {
namespace {

using nlohmann::ordered_json;

/** The first change seen for each parameter and each kind of movement. */
class Effects {
public:
    void add(const Movement& effect) {
        if (m_seen.insert({effect.parameter, effect.move.what}).second) m_effects.push_back(effect);
    }
    std::vector<Movement> take() { return std::move(m_effects); }

private:
    std::set<std::pair<std::string, std::string>> m_seen;
    std::vector<Movement> m_effects;
};

/** The entries of an enumeration that its setter accepts. Numbers are left out: their limits are published. */
std::vector<Value> takenEntries(Probe& probe, std::size_t index) {
    std::vector<Value> taken;
    if (!probe.at(index).effectOfWriting().empty()) return taken;
    for (const Entry& entry : entriesOf(probe.at(index)))
        if (probe.answer({index, entry.value}) == FG_OK) taken.emplace_back(entry.value);
    return taken;
}

std::string entriesInWords(const Parameter& parameter, const std::vector<Value>& entries) {
    std::vector<std::string> words;
    words.reserve(entries.size());
    for (const Value& entry : entries)
        words.push_back(valueText(parameter, entry));
    return words.empty() ? "none" : join(words, ", ");
}

ordered_json entriesAsJson(const Parameter& parameter, const std::vector<Value>& entries) {
    ordered_json rows = ordered_json::array();
    for (const Value& entry : entries)
        rows.push_back(valueAsJson({&parameter}, entry));
    return rows;
}

constexpr const char* otherElements = "other elements";
Move elementsMove() { return {"value", "elements", otherElements}; }

/** The elements of an array; empty for other kinds. */
Value arrayNow(const Probe& probe, std::size_t index) {
    const Parameter& parameter = probe.at(index);
    if (elementCount(parameter) == 0) return {};
    return readValue(probe.session().instance(), wholeOf(parameter)).value;
}

/** The elements of all arrays, by index. */
std::vector<Value> arraysNow(const Probe& probe) {
    std::vector<Value> arrays;
    for (std::size_t index = 0; index < probe.count(); ++index)
        arrays.push_back(arrayNow(probe, index));
    return arrays;
}

/** The movements of a parameter since the probe began, with `array` as its elements then. */
std::vector<Move> movesSince(Probe& probe, std::size_t index, const Value& array) {
    std::vector<Move> moves = movesBetween(probe.at(index), probe.state(index), probe.currentState(index));
    if (arrayNow(probe, index) != array) moves.push_back(elementsMove());
    return moves;
}

/** The constructor tries all values. */
class Search {
public:
    Search(Probe& probe, std::size_t subject)
        : m_probe(probe)
        , m_subject(subject)
        , m_arrays(arraysNow(probe)) {
        for (std::size_t index = 0; index < probe.count(); ++index)
            m_entries.push_back(takenEntries(probe, index));
        probe.restore();
        for (const Value& value : probe.otherValues(subject))
            findMoved(value);
        probe.restore();
        for (std::size_t index = 0; index < probe.count(); ++index) {
            probe.session().reportProgress(index, probe.count());
            if (index == subject) continue;
            for (const Value& value : probe.otherValues(index))
                findMovers({index, value});
            probe.restore();
        }
    }

    bool isTried() const { return !m_probe.otherValues(m_subject).empty(); }

    Effects moved, movers;
    std::vector<std::string> writes; // design parameters, in the order in which a set first wrote them

private:
    void compare(std::size_t index, Effects& effects, const std::string& name, const std::string& with) {
        const Parameter& parameter = m_probe.at(index);
        for (const Move& move : movesSince(m_probe, index, m_arrays[index]))
            effects.add({name, with, move});
        const std::vector<Value> entries = takenEntries(m_probe, index);
        if (entries != m_entries[index])
            effects.add({name,
                         with,
                         {"accepted values", entriesInWords(parameter, m_entries[index]),
                          entriesInWords(parameter, entries), entriesAsJson(parameter, m_entries[index]),
                          entriesAsJson(parameter, entries)}});
    }

    void findMoved(const Value& value) {
        Instance& instance = m_probe.session().instance();
        const std::string with = m_probe.words({m_subject, value});
        logWrites(instance);
        m_probe.tryChange({m_subject, value}, [&] {
            for (const std::string& line : takeAccessLog(instance))
                addWrite(line);
            instance.board().log_kinds(instance.device(), 0);
            for (std::size_t index = 0; index < m_probe.count(); ++index)
                if (index != m_subject) compare(index, moved, m_probe.at(index).name, with);
        });
    }

    void findMovers(const Change& change) {
        const std::string with = m_probe.words(change), name = m_probe.at(change.index).name;
        m_probe.tryChange(change, [&] { compare(m_subject, movers, name, with); });
    }

    void addWrite(const std::string& line) {
        const std::string name = loggedAccess(line).parameter;
        if (m_written.insert(name).second) writes.push_back(name);
    }

    Probe& m_probe;
    std::size_t m_subject;
    std::vector<Value> m_arrays;               // in the state of the probe
    std::vector<std::vector<Value>> m_entries; // accepted in it
    std::set<std::string> m_written;
};

} // namespace

template <> struct MessageRows<Move> {
    static constexpr auto rows =
        std::tuple(&Move::what, &Move::from, &Move::to, &Move::fromJson, &Move::toJson);
};
template <> struct MessageRows<Movement> {
    static constexpr auto rows = std::tuple(&Movement::parameter, &Movement::with, &Movement::move);
};
template <> struct MessageRows<Dependencies> {
    using Record = Dependencies;
    static constexpr auto rows =
        std::tuple(&Record::parameter, &Record::isTried, &Record::moves, &Record::movedBy, &Record::writes);
};

Dependencies dependenciesOf(Probe& probe, const Parameter& parameter) {
    const std::string name = parameter.name; // a copy: the record may be gone after the trials
    Search search(probe, probe.indexOf(parameter));
    return {name, search.isTried(), search.moved.take(), search.movers.take(), search.writes};
}

ordered_json asJson(const std::vector<Movement>& movements) {
    ordered_json rows = ordered_json::array();
    for (const auto& [parameter, with, move] : movements) {
        ordered_json row = {{"parameter", parameter}, {"with", with}};
        row.update(applet_tools::asJson(move));
        rows.push_back(std::move(row));
    }
    return rows;
}

ordered_json asJson(const Dependencies& dependencies) {
    return {{"name", dependencies.parameter},
            {"moves", asJson(dependencies.moves)},
            {"movedBy", asJson(dependencies.movedBy)},
            {"tried", dependencies.isTried},
            {"writes", dependencies.writes}};
}

std::vector<Movement> movesOf(Probe& probe, const Change& change) {
    const std::vector<Value> arrays = arraysNow(probe);
    const std::string with = probe.words(change);
    std::vector<Movement> movements;
    probe.tryChange(change, [&] {
        for (std::size_t index = 0; index < probe.count(); ++index)
            if (index != change.index)
                for (const Move& move : movesSince(probe, index, arrays[index]))
                    movements.push_back({probe.at(index).name, with, move});
    });
    probe.restore();
    return movements;
}

std::string inWords(const Movement& movement) {
    const auto& [what, from, to, fromJson, toJson] = movement.move;
    if (to == otherElements) return "the elements of " + movement.parameter;
    return (what == "value" ? "" : "the " + what + " of ") + movement.parameter + " (" + from + " -> " + to +
           ")";
}

namespace {

/** The state of all parameters after the assignments. */
struct Moment {
    Moment(ScratchSession& session, const Words& words) {
        session.rewind();
        applyAssignments(session.instance(), session.parameters(), words, {});
        const Probe probe(session);
        states = probe.states();
        arrays = arraysNow(probe);
    }
    std::vector<ParameterState> states;
    std::vector<Value> arrays;
};

/** The assignments before the first one that is refused. */
Words acceptedOf(ScratchSession& session, const Words& words) {
    session.rewind();
    Words accepted;
    const AssignmentHooks hooks{.after = [&](const AssignmentResult& result) {
        if (result.code == FG_OK) accepted.push_back(words[accepted.size()]);
    }};
    applyAssignments(session.instance(), session.parameters(), words, hooks);
    return accepted;
}

/** What the assignments to the parameter move: the difference to the state without them. */
std::vector<Movement> movesOf(ScratchSession& session, const Words& words, const std::string& name) {
    Words others, own;
    for (const std::string& word : words) {
        const Target target = parseAssignments(session.parameters(), {word}).front().target;
        (target.parameter->name == name ? own : others).push_back(word);
    }
    if (own.empty()) return {};
    const Moment without(session, others), with(session, words);
    std::vector<Movement> movements;
    for (std::size_t index = 0; index < with.states.size(); ++index) {
        const Parameter& parameter = session.parameters().all()[index];
        std::vector<Move> moves = movesBetween(parameter, without.states[index], with.states[index]);
        if (without.arrays[index] != with.arrays[index]) moves.push_back(elementsMove());
        for (const Move& move : moves)
            if (parameter.name != name) movements.push_back({parameter.name, own.back(), move});
    }
    return movements;
}

} // namespace

json movesJob(ScratchSession& session, const json& arguments) {
    const Words words = acceptedOf(session, arguments.at("words").get<Words>());
    json answer = json::object();
    for (const auto& name : arguments.at("names").get<Words>())
        answer[name] = toMessage(movesOf(session, words, name));
    return answer;
}

std::map<std::string, std::vector<Movement>> askMoves(LiveSession& live, const Words& names,
                                                      const Words& words) {
    std::map<std::string, std::vector<Movement>> moves;
    const json answer = live.scratch().ask("moves", {{"names", names}, {"words", words}});
    for (const auto& [name, rows] : answer.items())
        moves[name] = recordFrom<std::vector<Movement>>(rows);
    return moves;
}

json dependenciesJob(ScratchSession& session, const json& arguments) {
    startFrom(session, arguments.at("with").get<Words>());
    Probe probe(session);
    const Target target = findTarget(session.parameters(), arguments.at("name").get<std::string>());
    return toMessage(dependenciesOf(probe, *target.parameter));
}

Dependencies askDependencies(LiveSession& live, const std::string& parameter, const Words& assignments) {
    return recordFrom<Dependencies>(live.scratch().ask("deps", {{"name", parameter}, {"with", assignments}}));
}

} // namespace applet_tools
