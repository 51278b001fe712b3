// What a parameter moves and what moves it, measured on the scratch board.

#include "applet_tools/applet/access_log.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/Probe.h"
#include "applet_tools/scratch/refusal.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/jobs.h"
#include "appletctl/commands/reports.h"
#include "appletctl/commands/shared_options.h"

#include <CLI/CLI.hpp>

#include "vexo/fg_errors.h"

#include <unistd.h>

#include <set>

namespace appletctl {
namespace {

using nlohmann::ordered_json;

/** What one change of one parameter moved of another one. */
struct Movement {
    std::string parameter;
    std::string with; // "FG_XOFFSET=64"
    Move move;
};

/** Of each parameter and each way to be moved the first change that was seen. */
class Effects {
public:
    void add(const Movement& effect) {
        if (m_seen.insert({effect.parameter, effect.move.what}).second) m_effects.push_back(effect);
    }
    const std::vector<Movement>& all() const { return m_effects; }

private:
    std::set<std::pair<std::string, std::string>> m_seen;
    std::vector<Movement> m_effects;
};

/** The entries of an enumeration that its setter takes. Numbers are left out, since their limits are published. */
std::vector<Value> takenEntries(Probe& probe, std::size_t place) {
    std::vector<Value> taken;
    if (!probe.at(place).effectOfWriting().empty()) return taken;
    for (const Entry& entry : entriesOf(probe.at(place)))
        if (probe.answer({place, entry.value}) == FG_OK) taken.emplace_back(entry.value);
    return taken;
}

std::string entriesInWords(const Parameter& parameter, const std::vector<Value>& entries) {
    std::vector<std::string> words;
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

class Dependencies {
public:
    Dependencies(Probe& probe, std::size_t subject) : m_probe(probe), m_subject(subject) {
        for (std::size_t place = 0; place < probe.count(); ++place) {
            m_entries.push_back(takenEntries(probe, place));
            m_arrays.push_back(arrayNow(place));
        }
        probe.restore();
        for (const Value& value : probe.otherValues(subject))
            findMoved(value);
        probe.restore();
        for (std::size_t place = 0; place < probe.count(); ++place) {
            probe.session().tellProgress(place, probe.count());
            if (place == subject) continue;
            for (const Value& value : probe.otherValues(place))
                findMovers({place, value});
            probe.restore();
        }
    }

    bool isTried() const { return !m_probe.otherValues(m_subject).empty(); }

    Effects moved, movers;
    std::vector<std::string> writes; // of the design, in the order of the first set that wrote them

private:
    /** The elements of an array; nothing for others. */
    Value arrayNow(std::size_t place) const {
        const Parameter& parameter = m_probe.at(place);
        if (elementCount(parameter) == 0) return {};
        return readValue(m_probe.session().instance(), wholeOf(parameter)).value;
    }

    void compare(std::size_t place, Effects& effects, const std::string& name, const std::string& with) {
        const Parameter& parameter = m_probe.at(place);
        for (const Move& move : movesBetween(parameter, m_probe.facts(place), m_probe.currentState(place)))
            effects.add({name, with, move});
        if (arrayNow(place) != m_arrays[place])
            effects.add({name, with, {"value", "elements", "other elements"}});
        const std::vector<Value> entries = takenEntries(m_probe, place);
        if (entries != m_entries[place])
            effects.add({name,
                         with,
                         {"accepted values", entriesInWords(parameter, m_entries[place]),
                          entriesInWords(parameter, entries), entriesAsJson(parameter, m_entries[place]),
                          entriesAsJson(parameter, entries)}});
    }

    void findMoved(const Value& value) {
        Instance& instance = m_probe.session().instance();
        const std::string with = m_probe.words({m_subject, value});
        logWrites(instance);
        m_probe.tryChange({m_subject, value}, [&] {
            for (const std::string& line : takeWrites(instance))
                addWrite(line);
            instance.board().log_kinds(instance.device(), 0);
            for (std::size_t place = 0; place < m_probe.count(); ++place)
                if (place != m_subject) compare(place, moved, m_probe.at(place).name, with);
        });
    }

    void findMovers(const Change& change) {
        const std::string with = m_probe.words(change), name = m_probe.at(change.place).name;
        m_probe.tryChange(change, [&] { compare(m_subject, movers, name, with); });
    }

    void addWrite(const std::string& line) {
        const std::string name = writtenParameter(line);
        if (m_written.insert(name).second) writes.push_back(name);
    }

    Probe& m_probe;
    std::size_t m_subject;
    std::vector<std::vector<Value>> m_entries; // that are taken in the state of the probe
    std::vector<Value> m_arrays;
    std::set<std::string> m_written;
};

ordered_json asJson(const Effects& effects) {
    ordered_json rows = ordered_json::array();
    for (const Movement& effect : effects.all()) {
        ordered_json row = {{"parameter", effect.parameter}, {"with", effect.with}};
        row.update(appletctl::asJson(effect.move));
        rows.push_back(std::move(row));
    }
    return rows;
}

std::string asDot(const std::string& name, const Dependencies& found) {
    std::string text = "digraph dependencies {\n  rankdir=LR;\n  \"" + name + "\" [shape=box];\n";
    const auto edge = [&](const std::string& from, const std::string& to, const std::string& label) {
        text += "  \"" + from + "\" -> \"" + to + "\" [label=\"" + label + "\"];\n";
    };
    for (const Movement& effect : found.movers.all())
        edge(effect.parameter, name, effect.move.what);
    for (const Movement& effect : found.moved.all())
        edge(name, effect.parameter, effect.move.what);
    for (const std::string& write : found.writes) {
        text += "  \"" + write + "\" [shape=note];\n";
        edge(name, write, "writes");
    }
    return text + "}\n";
}

std::string asText(const std::string& name, const Dependencies& found) {
    Table table;
    table.addSubject(name);
    for (const auto& [title, effects] :
         {std::pair("moves", &found.moved), std::pair("moved by", &found.movers)}) {
        for (const Movement& effect : effects->all())
            table.addRow({title, effect.parameter, effect.move.what,
                          effect.move.from + " -> " + effect.move.to + " with " + effect.with});
        if (effects->all().empty() && (found.isTried() || effects == &found.movers))
            table.addRow({title, effects == &found.movers ? "no other parameter that was tried"
                                                          : "nothing that was seen"});
    }
    for (const std::string& write : found.writes)
        table.addRow({"writes", write});
    if (!found.isTried()) table.addRow({"moves", "not known: no value of it is tried"});
    return table.render(Style::forStream(STDOUT_FILENO));
}

} // namespace

json depsJob(ScratchSession& session, const json& arguments) {
    layOutAsAsked(arguments);
    Report report;
    startFrom(session, arguments.at("with").get<Words>());
    Probe probe(session);
    const Parameter& parameter =
        *findTarget(session.parameters(), arguments.at("name").get<std::string>()).parameter;
    const std::string name = parameter.name;
    const Dependencies found(probe, probe.placeOf(parameter));
    report.document = {{"name", name},
                       {"moves", asJson(found.moved)},
                       {"movedBy", asJson(found.movers)},
                       {"tried", found.isTried()},
                       {"writes", found.writes}};
    const bool isDot = arguments.at("dot").get<bool>();
    report.text = isDot ? asDot(name, found) : asText(name, found);
    if (isDot) report.document["dot"] = report.text;
    return asMessage(report);
}

namespace {

void addDepsOptions(CLI::App& command, Options& options) { addDot(command, options); }

Report showDependencies(Context& context, const Words& name) {
    const bool isDot = context.options().of<DotOption>().isWanted;
    Report report = askReport(
        context.scratch(), "deps",
        {{"name", name.front()}, {"dot", isDot}, {"with", context.options().of<WithOption>().assignments}});
    report.isVerbatim = isDot;
    if (!isDot) {
        addAssumed(report, context.assumed());
    } else if (!context.assumed().empty()) {
        report.document["assumed"] = context.assumed();
        report.text += "// assumed: " + join(context.assumed(), ", ") + "\n";
    }
    return report;
}

} // namespace

extern const Command depsCommand;
const Command depsCommand = {
    .name = "deps",
    .help = "Show what a parameter moves and what moves it",
    .argument = "NAME",
    .argumentHelp = "Parameter",
    .examples = {{"deps FG_WIDTH", "what it moves and what moves it"},
                 {"deps FG_WIDTH --dot", "as a graph, for the program dot"}},
    .fewest = 1,
    .most = 1,
    .run = showDependencies,
    .scratch = Context::Scratch::wanted,
    .addOptions = addDepsOptions,
    .showsValues = true,
    .takesWithToScratch = true,
};

} // namespace appletctl
