#include "applet_tools/station/EventLog.h"

#include "applet_host/events.h"

#include <nlohmann/json.hpp>

namespace applet_tools {

EventLog::EventLog(Instance& instance) : m_instance(instance), m_droppedBefore(0) {
    take(0);
    m_droppedBefore = dropped();
}

std::string EventLog::take(std::int64_t picture) {
    std::string lines;
    applet_host::takeEvents(m_instance.board(), m_instance.device(), [&](const vboard_event& event) {
        const double seconds = static_cast<double>(event.tick) / static_cast<double>(ticksPerSecond);
        const nlohmann::ordered_json line = {
            {"tick", event.tick}, {"time", seconds}, {"name", event.name}, {"picture", picture}};
        lines += line.dump() + '\n';
    });
    return lines;
}

std::int64_t EventLog::lost() const { return dropped() - m_droppedBefore; }

std::int64_t EventLog::dropped() const {
    return m_instance.applet().Fg_getStatusEx(m_instance.fg(), VBOARD_STATUS_DROPPED_EVENTS, 0, 0, nullptr);
}

} // namespace applet_tools
