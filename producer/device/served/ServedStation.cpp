#include "device/served/ServedStation.h"

namespace producer {

using namespace station_channel;

ServedStation::ServedStation(const std::string& name) : m_link(name) {
    Description part;
    do {
        part = m_link.ask<Description>(Describe{static_cast<std::uint32_t>(parameters().size())});
        for (applet_host::Parameter& parameter : part.parameters)
            addParameter(std::move(parameter));
    } while (parameters().size() < part.count && !part.parameters.empty());
    addEvents(part.events);
}

Value ServedStation::get(const Parameter& parameter) const {
    return m_link.ask<Value>(ReadValue{parameter.name});
}

void ServedStation::set(const Parameter& parameter, const Value& value) const {
    m_link.ask<Done>(WriteValue{parameter.name, value});
}

applet_host::ParameterState ServedStation::state(const Parameter& parameter) const {
    return m_link.ask<applet_host::ParameterState>(ReadState{parameter.name});
}

void ServedStation::wantEvents(std::uint64_t mask) { m_link.ask<Done>(WantEvents{mask}); }

std::uint64_t ServedStation::nanoseconds() { return m_link.ask<Time>(ReadTime()).tick * nanosecondsPerTick; }

} // namespace producer
