#include "applet_tools/scratch/History.h"

#include "applet_tools/applet/files/LutTables.h"
#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/applet/published_limits.h"
#include "applet_tools/applet/timing/simulator_rates.h"
#include "applet_tools/base/text.h"

#include "vexo/fg_errors.h"
#include "vexo/fg_parameters.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <string_view>
#include <utility>

namespace applet_tools {
namespace {

constexpr const char* continuedCount[] = {"FG_SHAFTENCODER_COMPENSATION_COUNT",
                                          "DLOOMA_Device1_Process0_Trigger_Trigger_EncoderCompensationCount"};
constexpr std::size_t mostSteps = 50; // a step is some hundred kilobytes, and a station runs for long

/** Calls `use` for the design parameters that the applet writes; the rest is status. */
template <typename Use> void forWrittenDesign(Instance& instance, Use use) {
    const ParameterList design(instance, ParameterList::Scope::design);
    for (const Parameter& parameter : design.all())
        if (accessWord(parameter) != "ro" && parameter.effectOfReading().empty()) use(parameter);
}

/** Digests of the design's arrays, which can be compared and not restored, since they are not published. */
json digestsOf(const std::map<std::string, Elements>& tables) {
    json digests = json::object();
    for (const auto& [name, elements] : tables) {
        const std::string_view bytes(reinterpret_cast<const char*>(elements.data()),
                                     elements.size() * sizeof elements.front());
        digests[std::string(designPrefix) + name] = {{"digest", std::hash<std::string_view>()(bytes)}};
    }
    return digests;
}

json writtenDesign(Instance& instance) {
    json values = json::object();
    forWrittenDesign(instance, [&](const Parameter& parameter) {
        const ReadResult reading = readValue(instance, wholeOf(parameter));
        if (reading.error == FG_OK) values[parameter.name] = asMessage(reading.value);
    });
    return values;
}

/** Restores values that no setter accepts, such as an exposure above a period that was lowered afterwards. */
void writeDesign(Instance& instance, const json& wanted) {
    forWrittenDesign(instance, [&](const Parameter& parameter) {
        const auto value = wanted.find(parameter.name);
        if (value != wanted.end() && !value->is_null() && !holds(instance, parameter, *value))
            writeValue(instance, wholeOf(parameter), fromMessage(wholeOf(parameter), *value));
    });
}

json accessOf(const ParameterList& parameters) {
    json access = json::object();
    for (const Parameter& parameter : parameters.all())
        if (parameter.record != nullptr) access[parameter.name] = parameter.record->access;
    return access;
}

/** Null if it has none at this moment: records may be added and removed. */
json publishedLimitsOf(const ParameterList& parameters) {
    json limits = json::object();
    for (const Parameter& parameter : parameters.all()) {
        auto& own = limits[parameter.name] = nullptr;
        if (const auto published = limitsOf(parameter))
            own = {asMessage(published->minimum), asMessage(published->maximum),
                   asMessage(published->increment)};
    }
    return limits;
}

bool allHold(Instance& instance, const Wanted& wanted) {
    return std::ranges::all_of(
        wanted, [&](const auto& value) { return holds(instance, *value.first, *value.second); });
}

SimulatorRates ratesOf(const json& values) {
    const auto rate = [&](const char* name) {
        const auto value = values.find(name);
        return value != values.end() && value->is_number() ? value->get<double>() : 0;
    };
    return {rate(SimulatorRates::lineName), rate(SimulatorRates::frameName)};
}

/** Undefined numbers, which a load may store, are the same value here. */
bool areSame(const json& a, const json& b) {
    const auto isUndefined = [](const json& value) {
        return value.is_number_float() && std::isnan(value.get<double>());
    };
    return a == b || (isUndefined(a) && isUndefined(b));
}

Words differingNames(const json& a, const json& b) {
    Words names;
    for (const auto& [name, value] : a.items())
        if (const auto other = b.find(name); other != b.end() && !areSame(*other, value))
            names.push_back(name);
    return names;
}

std::string designText(const json& value) { return value.is_number() ? value.dump() : "other contents"; }

} // namespace

const std::set<std::string>& History::settable() {
    if (!m_settable.empty()) return m_settable;
    for (const json& row : m_live.scratchAtDefaults().ask("defaults", nullptr))
        m_settable.insert(row.at("name").get<std::string>());
    return m_settable;
}

History::Moment History::now() {
    Instance& instance = m_live.instance();
    Moment moment{valuesOf(instance, m_live.parameters()), writtenDesign(instance),
                  accessOf(m_live.parameters()), publishedLimitsOf(m_live.parameters())};
    moment.design.update(digestsOf(designTables(instance, m_live.parameters())));
    return moment;
}

void History::begin(const std::string& line) {
    try {
        m_begin = now();
        m_begin->line = line;
        m_live.instance().sets().clear();
        if (m_live.instance().device() == nullptr)
            m_live.instance().loads() = {}; // offline, for its own sets
    } catch (const std::runtime_error&) {   // no applet; the command reports that
        m_begin.reset();
    }
}

/** The board continues this count. If the command has not set it, its change is none of the command's. */
void History::forgetContinuedCount() {
    if (m_live.instance().sets().contains(FG_SHAFTENCODER_COMPENSATION_COUNT)) return;
    for (const char* name : continuedCount) {
        m_begin->values.erase(name);
        m_begin->design.erase(name);
    }
}

void History::end() {
    if (!m_begin || !m_live.isUp()) return;
    forgetContinuedCount();
    const Moment after = now();
    const auto isSettable = [&](const std::string& name) { return settable().contains(name); };
    const Words differing = differingNames(m_begin->values, after.values);
    Words& notRestored = m_begin->notRestored;
    std::ranges::copy_if(differing, std::back_inserter(notRestored), [&](const std::string& name) {
        return m_live.parameters().find(name).writesFile();
    });
    const std::set<int>& set = m_live.instance().loads().setSince;
    std::ranges::copy_if(m_live.notMeasured(), std::back_inserter(notRestored), [&](const std::string& name) {
        return set.contains(m_live.parameters().find(name).id);
    });
    const bool isChanged = !differingNames(m_begin->design, after.design).empty() || !notRestored.empty() ||
                           std::ranges::any_of(differing, isSettable);
    if (isChanged) m_steps.push_back(std::move(*m_begin));
    if (m_steps.size() > mostSteps) m_steps.pop_front();
    m_begin.reset();
}

Wanted History::wantedValues(const Moment& moment) {
    Wanted wanted = wantedFrom(m_live.parameters(), moment.values);
    std::erase_if(wanted, [&](const auto& value) {
        const std::string& name = value.first->name;
        return name.starts_with(designPrefix) || !settable().contains(name);
    });
    return wanted;
}

/** Used if the values are equal but access or design differ: a refused set may have changed them before it
 *  failed, or the parameter reads back another value than it was set to. Modes are set again only to restore
 *  access. */
void History::rewrite(const Wanted& wanted, bool withModes) {
    Instance& instance = m_live.instance();
    for (const auto& [parameter, value] : wanted) {
        const bool isMode = parameter->kind() == REGISTER_KIND_ENUM;
        if (value->is_number() && !isComputedNow(*parameter) && (withModes || !isMode))
            writeValue(instance, {parameter}, requestFor(*parameter, fromMessage({parameter}, *value)));
    }
    setAll(instance, wanted);
}

/** The access of a parameter may depend on the order in which two modes were set, and on their values meanwhile. So
 *  each mode that the step had changed is set again while another one has its value of after the step. */
void History::restoreAccess(const Wanted& wanted, const Moment& before, const json& access) {
    Instance& instance = m_live.instance();
    Wanted changed = wanted;
    std::erase_if(changed, [&](const auto& one) {
        return one.first->kind() != REGISTER_KIND_ENUM ||
               before.values.value(one.first->name, json()) == *one.second;
    });
    const auto write = [&](const Parameter& parameter, const json& value) {
        writeValue(instance, {&parameter}, fromMessage({&parameter}, value));
    };
    for (const auto& [first, value] : changed)
        for (const auto& [other, otherValue] : changed) {
            if (accessOf(m_live.parameters()) == access) return;
            if (other == first) continue;
            write(*other, before.values.at(other->name));
            write(*first, *value);
            setAll(instance, wanted);
        }
}

std::optional<Undone> History::undo() {
    if (m_steps.empty()) return std::nullopt;
    const Moment wanted = std::move(m_steps.back());
    m_steps.pop_back();
    const Moment before = now();
    const Wanted values = wantedValues(wanted);
    Instance& instance = m_live.instance();
    setAll(instance, values);
    if (!allHold(instance, values)) storeByLoad(instance, values);
    const Moment reached = now();
    const bool hasAccess = reached.access == wanted.access;
    if (!hasAccess || !differingNames(wanted.design, reached.design).empty()) rewrite(values, !hasAccess);
    if (!hasAccess) restoreAccess(values, before, wanted.access);
    writeDesign(instance, wanted.design);
    return undoneOf(before, wanted);
}

Undone History::undoneOf(const Moment& before, const Moment& wanted) {
    Undone undone{wanted.line, {}, {}, {}};
    const Moment reached = now();
    for (const std::string& name : differingNames(before.values, wanted.values)) {
        if (!settable().contains(name)) continue;
        const Target target = {&m_live.parameters().find(name)};
        const bool isMoved =
            isNextCycle(m_live.parameters(), name, ratesOf(before.values), ratesOf(wanted.values));
        undone.settings.push_back({target, readValue(m_live.instance(), target), isMoved});
    }
    if (undone.settings.empty())
        for (const std::string& name : differingNames(before.design, reached.design))
            undone.design.push_back(
                {designName(name), designText(before.design[name]), designText(reached.design[name])});
    undone.otherLimits = differingNames(wanted.limits, reached.limits);
    Words& others = undone.notAsBefore;
    for (const std::string& name : differingNames(wanted.values, reached.values))
        if (settable().contains(name)) others.push_back(name);
    std::ranges::copy(wanted.notRestored, std::back_inserter(others)); // a set would write the file again
    for (const std::string& name : differingNames(wanted.access, reached.access))
        others.push_back("the access of " + name);
    for (const std::string& name : differingNames(wanted.design, reached.design))
        others.push_back(designName(name) + " of the design");
    return undone;
}

} // namespace applet_tools
