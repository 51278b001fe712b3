#include "serve/http/state/parameter_documents.h"

#include "applet_tools/applet/published_limits.h"
#include "applet_tools/applet/timing/simulator_rates.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"

#include "vexo/fg_errors.h"

namespace serve {
namespace {

using namespace applet_tools;

const char* typeOf(const Parameter& parameter) {
    switch (parameter.kind()) {
    case REGISTER_KIND_ENUM:
        return "enumeration";
    case REGISTER_KIND_STRING:
        return "text";
    case REGISTER_KIND_DOUBLE:
        return "number";
    default:
        return elementCount(parameter) > 0 ? "array" : "integer";
    }
}

const char* accessOf(const Parameter& parameter) {
    if (parameter.record == nullptr) return "readwrite";
    const bool isRead = (parameter.record->access & REGISTER_ACCESS_READ) != 0;
    const bool isWritten = (parameter.record->access & REGISTER_ACCESS_WRITE) != 0;
    if (isWritten) return isRead ? "readwrite" : "write";
    return isRead ? "read" : "none";
}

Json limitsJson(const Parameter& parameter) {
    const std::optional<Limits> limits = limitsOf(parameter);
    if (!limits) return nullptr;
    return {{"minimum", numberAsJson(limits->minimum)},
            {"maximum", numberAsJson(limits->maximum)},
            {"step", numberAsJson(limits->increment)}};
}

Json entriesJson(const Parameter& parameter) {
    if (parameter.kind() != REGISTER_KIND_ENUM) return nullptr;
    Json entries = Json::array();
    for (const Entry& entry : entriesOf(parameter))
        entries.push_back({{"value", entry.value}, {"name", entry.symbol}, {"label", entry.label}});
    return entries;
}

} // namespace

Json asJson(const Value& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return toUtf8(*text);
    if (const auto* elements = std::get_if<Elements>(&value)) return *elements;
    return numberAsJson(value);
}

Json remedyOf(const Words& assignments) {
    Json settings = Json::array();
    for (const std::string& word : assignments) {
        const std::size_t equals = word.find('=');
        settings.push_back({{"name", word.substr(0, equals)}, {"value", word.substr(equals + 1)}});
    }
    return {{"text", joinWords(assignments)}, {"settings", std::move(settings)}};
}

Target ParameterDocuments::targetOf(const std::string& word) {
    try {
        return findTarget(m_live.parameters(), word);
    } catch (const UsageError& error) {
        throw HttpError(status::notFound, "unknown", error.what());
    }
}

const DefaultAndRole& ParameterDocuments::knownOf(const Parameter& parameter) {
    if (m_known.empty()) {
        std::vector<const Parameter*> all;
        for (const Parameter& one : m_live.parameters().all())
            if (one.effectOfReading().empty()) all.push_back(&one);
        m_known = defaultsAndRolesOf(m_live, all, FileRoles::unasked);
    }
    return m_known[parameter.name];
}

bool ParameterDocuments::isChanged(const Target& target) {
    if (!target.parameter->effectOfReading().empty()) return false;
    const ReadResult reading = m_live.read(wholeOf(*target.parameter));
    return reading.error == FG_OK && reading.isMeasured &&
           applet_tools::isChanged(m_live, *target.parameter, knownOf(*target.parameter), reading.value);
}

Json ParameterDocuments::documentOf(const Target& target) {
    const Parameter& parameter = *target.parameter;
    const DefaultAndRole& known = knownOf(parameter);
    Json document;
    document["name"] = target.name();
    document["label"] = parameter.label();
    document["path"] = parameter.groups;
    document["type"] = typeOf(parameter);
    document["unit"] = parameter.unit();
    document["access"] = accessOf(parameter);
    document["isSetting"] = known.isSettable;
    const std::string effect = parameter.effectOfReading();
    const ReadResult reading = effect.empty() ? m_live.read(target) : ReadResult();
    const bool hasValue = effect.empty() && reading.error == FG_OK && reading.isMeasured;
    document["value"] = hasValue ? serve::asJson(reading.value) : Json();
    document["shown"] = hasValue ? Json(toUtf8(valueWithUnit(parameter, reading.value))) : Json();
    if (!effect.empty()) document["readEffect"] = effect;
    if (reading.error != FG_OK) document["readError"] = codeInWords(reading.error);
    if (!parameter.effectOfWriting().empty()) document["writeEffect"] = parameter.effectOfWriting();
    document["elements"] = elementCount(parameter) > 0 ? Json(elementCount(parameter)) : Json();
    document["limits"] = limitsJson(parameter);
    document["entries"] = entriesJson(parameter);
    const bool hasDefault = known.start && elementCount(parameter) == 0;
    document["default"] = hasDefault ? serve::asJson(*known.start) : Json();
    document["isChanged"] = isChanged(target);
    document["description"] = explanationOf(m_live.instance(), parameter);
    return document;
}

std::vector<ParameterState> ParameterDocuments::states() {
    return statesOf(m_live.instance(), m_live.parameters());
}

bool ParameterDocuments::isMeasured(const Parameter& parameter, std::uint32_t access) {
    const bool isSetting = (access & REGISTER_ACCESS_WRITE) != 0 || SimulatorRates::isOne(parameter.name);
    if (isSetting) return false;
    if (!m_measured) m_live.bareScratch().ask("fromBoard", nullptr).get_to(m_measured.emplace());
    return m_measured->contains(parameter.name);
}

ParameterDocuments::Changes ParameterDocuments::changesSince(const std::vector<ParameterState>& before,
                                                             bool withMeasured) {
    Changes changes;
    changes.now = states();
    const std::vector<ParameterState>& now = changes.now;
    const auto& parameters = m_live.parameters().all();
    for (std::size_t i = 0; i < parameters.size() && i < before.size(); ++i) {
        const Parameter& parameter = parameters[i];
        if (now[i] == before[i]) continue;
        if (now[i].value != before[i].value && (withMeasured || !isMeasured(parameter, now[i].access)))
            changes.values.push_back({{"name", parameter.name},
                                      {"before", serve::asJson(before[i].value)},
                                      {"after", serve::asJson(now[i].value)},
                                      {"shown", toUtf8(valueWithUnit(parameter, now[i].value))}});
        if (now[i].limits != before[i].limits || now[i].access != before[i].access)
            changes.limits.push_back(parameter.name);
    }
    return changes;
}

} // namespace serve
