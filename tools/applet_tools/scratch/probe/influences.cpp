#include "applet_tools/scratch/probe/influences.h"

#include "applet_tools/scratch/probe/Probe.h"

#include "vexo/fg_errors.h"

namespace applet_tools {
namespace {

/** Values that limits or grid should exclude. */
std::vector<Value> valuesBeyond(const Probe& probe, std::size_t index) {
    const auto& limits = probe.state(index).limits;
    if (!limits || !isNumber(probe.state(index).value)) return {};
    std::vector<Value> values{numberAt(rankOf(limits->minimum) + 1, limits->minimum)};
    const std::uint64_t low = rankOf(limits->minimum), high = rankOf(limits->maximum);
    if (const Value below = numberAt(low - 1, limits->minimum); rankOf(below) < low) values.push_back(below);
    if (const Value above = numberAt(high + 1, limits->maximum); rankOf(above) > high)
        values.push_back(above);
    return values;
}

class Search {
public:
    explicit Search(ScratchSession& session) : m_probe(session) {
        for (std::size_t index = 0; index < m_probe.count(); ++index) {
            m_entries.push_back(entryValues(m_probe.at(index)));
            m_answers.push_back(m_probe.answers(index, m_entries[index]));
            addCodes(index);
        }
        m_probe.restore();
        for (std::size_t index = 0; index < m_probe.count(); ++index) {
            session.reportProgress(index, m_probe.count());
            for (const Value& value : m_probe.otherValues(index))
                m_probe.tryChange({index, value}, [&] { compareOthers({index, value}); });
            m_probe.restore();
        }
    }

    json answer() const { return {{"influences", m_rows}, {"codes", m_codes}}; }

private:
    static std::vector<Value> entryValues(const Parameter& parameter) {
        std::vector<Value> values;
        for (const Entry& entry : entriesOf(parameter))
            values.emplace_back(entry.value);
        return values;
    }

    void addCodes(std::size_t index) {
        std::set<int> codes(m_answers[index].begin(), m_answers[index].end());
        for (const Value& value : valuesBeyond(m_probe, index))
            codes.insert(m_probe.answer({index, value}));
        codes.erase(FG_OK);
        m_codes[m_probe.at(index).name] = codes;
    }

    void compareOthers(const Change& change) {
        for (std::size_t index = 0; index < m_probe.count(); ++index) {
            if (index == change.index) continue;
            const Parameter& other = m_probe.at(index);
            for (const Move& move : movesBetween(other, m_probe.state(index), m_probe.currentState(index)))
                add(change, other, move);
            if (m_probe.answers(index, m_entries[index]) != m_answers[index])
                add(change, other, {"accepted values", "", ""});
        }
    }

    void add(const Change& change, const Parameter& other, const Move& move) {
        const std::string& from = m_probe.at(change.index).name;
        if (!m_seen.insert({from, other.name, move.what}).second) return;
        m_rows.push_back({{"from", from},
                          {"to", other.name},
                          {"what", move.what},
                          {"with", m_probe.words(change)},
                          {"before", move.from},
                          {"after", move.to}});
    }

    Probe m_probe;
    std::vector<std::vector<Value>> m_entries; // of enumerations; empty for other kinds
    std::vector<std::vector<int>> m_answers;   // in the state of the probe
    std::set<std::vector<std::string>> m_seen;
    json m_rows = json::array();
    json m_codes = json::object();
};

} // namespace

json influencesJob(ScratchSession& session, const json&) { return Search(session).answer(); }

Influences askInfluences(LiveSession& live) {
    const json answer = live.scratch().ask("influences", nullptr);
    Influences influences;
    for (const json& row : answer["influences"])
        influences.all.push_back(
            {row["from"], row["to"], row["what"], row["with"], row["before"], row["after"]});
    for (const auto& [name, codes] : answer["codes"].items())
        influences.codes[name] = codes.get<std::set<int>>();
    return influences;
}

} // namespace applet_tools
