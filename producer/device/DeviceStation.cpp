#include "device/DeviceStation.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace producer {

Error refusal(int code, const std::string& text) {
    if (code == FG_ERR_OUT_OF_RANGE || code == FG_ERR_GRANULARITY) return {GC_ERR_INVALID_VALUE, text};
    return {code == FG_ERR_NOT_AVAILABLE ? GC_ERR_ACCESS_DENIED : GC_ERR_IO, text};
}

void DeviceStation::addParameter(applet_host::Parameter parameter) {
    m_parameters.push_back({std::move(parameter), m_parameters.size()});
}

void DeviceStation::addEvents(const std::vector<applet_host::EventName>& names) {
    for (const applet_host::EventName& event : names)
        m_events.push_back(
            {static_cast<std::uint64_t>(std::countr_zero(event.mask)) + 1, event.mask, event.name});
}

const Parameter* DeviceStation::find(const std::string& name) const {
    const auto found = std::ranges::find(m_parameters, name, &Parameter::name);
    return found != m_parameters.end() ? &*found : nullptr;
}

const Parameter& DeviceStation::known(const char* name) const {
    if (const Parameter* parameter = find(name)) return *parameter;
    throw Error(GC_ERR_NOT_AVAILABLE, std::string("the applet has no parameter ") + name);
}

std::int64_t DeviceStation::integer(const char* name) const {
    return std::get<std::int64_t>(get(known(name)));
}

double DeviceStation::real(const char* name) const { return std::get<double>(get(known(name))); }

void DeviceStation::set(const char* name, const Value& value) const { set(known(name), value); }

const EventKind* DeviceStation::eventOf(std::uint64_t mask) const {
    const auto found = std::ranges::find(m_events, mask, &EventKind::mask);
    return found != m_events.end() ? &*found : nullptr;
}

} // namespace producer
