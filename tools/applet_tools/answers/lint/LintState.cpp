#include "applet_tools/answers/lint/LintState.h"

#include "applet_tools/base/text.h"
#include "applet_tools/scratch/probe/measured_range.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace applet_tools {

Value LintState::value(const std::string& name) {
    const Target target = m_session.target(name);
    const ReadResult reading = readValue(m_session.instance(), target);
    return reading.error == FG_OK ? reading.value : emptyValue(target);
}

bool LintState::is(const std::string& name, std::initializer_list<int> entries) {
    return std::ranges::find(entries, static_cast<int>(number(name))) != entries.end();
}

bool LintState::isChanged(const std::string& name) {
    const auto start = m_session.defaults().find(name);
    const ReadResult reading = readValue(m_session.instance(), m_session.target(name));
    if (start == m_session.defaults().end() || reading.error != FG_OK) return false;
    const json now = asMessage(reading.value);
    if (!now.is_number_float()) return *start != now;
    // Simulator rates read from a file end up at the next step of their counter.
    constexpr double tolerance = 1e-3;
    const double before = start->get<double>();
    return std::fabs(now.get<double>() - before) > tolerance * std::fabs(before);
}

bool LintState::isRefused(const std::string& name) const {
    return std::ranges::find(m_refused, name) != m_refused.end();
}

std::string LintState::fromFile() const { return m_file.empty() ? "" : " --from " + asShellWord(m_file); }

void LintState::add(const char* rule, const Words& names, const std::string& why, const std::string& advice) {
    add(rule, names, textsOf(names), valuesOf(names), why, advice);
}

void LintState::add(const char* rule, const Words& names, const Words& texts, const json& values,
                    const std::string& why, const std::string& advice) {
    if (isAboutRefused(rule, names)) return;
    m_findings.push_back({rule, names, texts, values, why, advice});
}

void LintState::propose(const char* rule, const Words& names, const Words& texts, const json& values,
                        const std::string& why, const Value& wanted, const std::string& orElse) {
    if (isAboutRefused(rule, names)) return;
    m_proposals.push_back({m_findings.size(), names.front(), wanted, orElse});
    add(rule, names, texts, values, why, "");
}

void LintState::propose(const char* rule, const Words& names, const std::string& why, const Value& wanted,
                        const std::string& orElse) {
    propose(rule, names, textsOf(names), valuesOf(names), why, wanted, orElse);
}

bool LintState::isProposed(const std::string& name) const {
    return std::ranges::find(m_proposals, name, &Proposal::name) != m_proposals.end();
}

const std::vector<LintFinding>& LintState::findings() {
    for (const Proposal& proposal : m_proposals) {
        m_goBack();
        m_findings[proposal.finding].advice = adviceOn(proposal);
    }
    m_proposals.clear();
    return m_findings;
}

bool LintState::isAboutRefused(std::string_view rule, const Words& names) const {
    if (rule == "limits" || rule == "load") return false;
    return std::ranges::any_of(names, [this](const std::string& name) { return isRefused(name); });
}

Words LintState::textsOf(const Words& names) {
    Words texts;
    for (const std::string& name : names)
        texts.push_back(name + " = " + valueWithUnit(parameters().find(name), value(name)));
    return texts;
}

json LintState::valuesOf(const Words& names) {
    json values = json::array();
    for (const std::string& name : names) {
        const Parameter& parameter = parameters().find(name);
        values.push_back({{"name", name}, {"unit", parameter.unit()}});
        values.back().update(json(valueAsJson({&parameter}, value(name))));
    }
    return values;
}

std::string LintState::adviceOn(const Proposal& proposal) {
    Probe probe(m_session);
    const Target target = m_session.target(proposal.name);
    std::optional<Value> accepted = proposal.wanted;
    if (probe.answer(target, proposal.wanted) != FG_OK)
        accepted = nearestAccepted(probe, target, proposal.wanted);
    if (!accepted || probe.answer(target, *accepted) != FG_OK)
        return "'appletctl limits " + proposal.name + fromFile() + "' shows what is accepted";
    return "Set " + proposal.name + "=" + exactValueText(*target.parameter, *accepted) + proposal.orElse;
}

} // namespace applet_tools
