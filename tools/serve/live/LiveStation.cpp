#include "serve/live/LiveStation.h"

#include "applet_host/events.h"

namespace serve {

LiveStation::LiveStation(const StationAccess& stationAccess)
    : access(stationAccess)
    , commands(stationAccess.wake)
    , pictures(isVirtual() ? std::make_unique<LivePictures>(commands, instance(), access.clock) : nullptr) {}

void LiveStation::beginCommand(const std::string& text, bool acquires) {
    commands.setCommand(text);
    if (acquires && pictures) pictures->suspend(text);
}

void LiveStation::endCommand(bool acquires) {
    commands.setCommand("");
    if (acquires && pictures) pictures->resume();
    noteChanges();
}

void LiveStation::noteChanges() const {
    for (const auto& note : onChange)
        note();
}

void LiveStation::takeEvents() const {
    if (!isVirtual() || !commands.command().empty()) return;
    // Commands alone read the log, which would otherwise grow to its limit.
    instance().board().log_clear(instance().device());
    EventTicks taken;
    applet_host::takeEvents(instance().board(), instance().device(),
                            [&](const vboard_event& event) { taken[event.name].push_back(event.tick); });
    for (const auto& give : onEvents)
        give(taken);
}

void LiveStation::close() {
    commands.close();
    if (pictures) pictures->close();
}

} // namespace serve
