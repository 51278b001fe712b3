#include "applet_tools/station/EventLog.h"

#include <nlohmann/json.hpp>

namespace applet_tools {

EventLog::EventLog(Instance& instance) : m_instance(instance), m_droppedBefore(0) {
    take(0);
    m_droppedBefore = dropped();
}

std::string EventLog::take(std::int64_t picture) {
    std::string lines;
    vboard_event event{};
    while (m_instance.board().next_event(m_instance.device(), &event) == VBOARD_OK) {
        const double seconds = static_cast<double>(event.tick) / static_cast<double>(ticksPerSecond);
        const nlohmann::ordered_json line = {
            {"tick", event.tick}, {"time", seconds}, {"name", event.name}, {"picture", picture}};
        lines += line.dump() + '\n';
    }
    return lines;
}

std::int64_t EventLog::lost() const { return dropped() - m_droppedBefore; }

std::int64_t EventLog::dropped() const {
    return m_instance.applet().Fg_getStatusEx(m_instance.fg(), VBOARD_STATUS_DROPPED_EVENTS, 0, 0, nullptr);
}

} // namespace applet_tools
