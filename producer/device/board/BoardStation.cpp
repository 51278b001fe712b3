#include "device/board/BoardStation.h"

#include "applet_host/parameter_access.h"
#include "applet_host/text_encoding.h"
#include "device/board/station_file.h"

#include <utility>

namespace producer {

BoardStation::BoardStation(Libraries libraries) : m_libraries(std::move(libraries)), m_session(*m_libraries) {
    if (m_session.error != 0 || m_session.handle.object == nullptr)
        throw Error(GC_ERR_IO, "the applet does not come up: its code is " + std::to_string(m_session.error));
    board().log_kinds(device(), 0);
    for (const RegisterInfo* record = applet().Fg_getParameterInfo(fg(), 0); record != nullptr;
         record = record->next)
        collect(*record, "");
    addEvents(applet_host::eventNames(applet(), fg()));
    connectMachine();
}

void BoardStation::connectMachine() {
    if (setUpStationFile(m_libraries, m_session)) return;
    // Without a station file the board has no camera. The simulator replaces it and follows the camera trigger.
    set("FG_CAMERASIMULATOR_ENABLE", std::int64_t{FG_CAMERASIMULATOR});
    set("FG_CAMERASIMULATOR_TRIGGER_MODE", std::int64_t{RISING_EDGE_TRIGGERS_LINE});
    // A belt with parts on it. The inputs are those of the applet's default trigger sources.
    constexpr std::uint64_t millisecond = 125'000; // ticks
    constexpr unsigned lightBarrier = 0, trackA = 1, trackB = 2;
    constexpr std::int32_t quarterSteps = 20'000; // per second
    const vboard_speed speed{1, quarterSteps, quarterSteps};
    board().wave_encoder(device(), trackA, trackB, &speed, 1);
    board().wave_square(device(), lightBarrier, 100 * millisecond, 500 * millisecond, 250 * millisecond);
}

void BoardStation::collect(const RegisterInfo& record, const std::string& path) {
    if (record.kind != REGISTER_KIND_GROUP) {
        if (record.name == nullptr) return;
        addParameter(applet_host::describe(record, path));
        m_records.push_back(&record);
        return;
    }
    const std::string inner = (path.empty() ? "" : path + '\n') + applet_host::toUtf8(record.displayName);
    for (int i = 0; i < record.value.group.childCount; ++i)
        collect(*record.value.group.children[i], inner);
}

const EventKind* BoardStation::eventOfDesign(const char* designName) {
    const auto known = m_designEvents.find(designName);
    if (known != m_designEvents.end()) return known->second;
    return m_designEvents[designName] = eventOf(applet().Fg_getEventMask(fg(), designName));
}

Value BoardStation::get(const Parameter& parameter) const {
    try {
        return applet_host::readValue(applet(), fg(), *m_records[parameter.index]);
    } catch (const applet_host::Refused& error) {
        throw Error(GC_ERR_IO, error.what());
    }
}

void BoardStation::set(const Parameter& parameter, const Value& value) const {
    try {
        applet_host::writeValue(applet(), fg(), *m_records[parameter.index], value);
    } catch (const applet_host::Refused& error) {
        throw refusal(error.code(), error.what());
    }
}

applet_host::ParameterState BoardStation::state(const Parameter& parameter) const {
    return applet_host::stateOf(*m_records[parameter.index]);
}

} // namespace producer
