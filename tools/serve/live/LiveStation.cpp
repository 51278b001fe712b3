#include "serve/live/LiveStation.h"

namespace serve {
namespace {

constexpr std::size_t mostEventsAtOnce = 131'072; // twice the board's queue: they come while they are taken

} // namespace

LiveStation::LiveStation(const StationAccess& stationAccess)
    : access(stationAccess)
    , commands(stationAccess.wake)
    , pictures(isVirtual() ? std::make_unique<LivePictures>(commands, instance(), access.clock) : nullptr) {}

void LiveStation::beginCommand(const std::string& text, bool acquires) {
    commands.setCommand(text);
    if (acquires && pictures) pictures->giveWay(text);
}

void LiveStation::endCommand(bool acquires) {
    commands.setCommand("");
    if (acquires && pictures) pictures->comeBack();
    noteChanges();
}

void LiveStation::noteChanges() const {
    for (const auto& note : onChange)
        note();
}

void LiveStation::takeEvents() const {
    if (!isVirtual() || !commands.command().empty()) return;
    EventTicks taken;
    vboard_event event{};
    const auto& board = instance().board();
    for (std::size_t i = 0; i < mostEventsAtOnce; ++i) {
        if (board.next_event(instance().device(), &event) != VBOARD_OK) break;
        taken[event.name].push_back(event.tick);
    }
    for (const auto& give : onEvents)
        give(taken);
}

void LiveStation::close() {
    commands.close();
    if (pictures) pictures->close();
}

} // namespace serve
