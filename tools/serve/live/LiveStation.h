/** A running station, shared by its interfaces. */
#ifndef SERVE_LIVE_LIVESTATION_H
#define SERVE_LIVE_LIVESTATION_H

#include "serve/live/CommandThread.h"
#include "serve/live/LivePictures.h"
#include "serve/live/StationAccess.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace serve {

/** Created, used and closed by the command thread; other threads use `access`, `commands` and `pictures`. */
struct LiveStation {
    explicit LiveStation(const StationAccess& stationAccess);

    applet_tools::Instance& instance() const { return access.live->instance(); }
    bool isVirtual() const { return access.board == "virtual"; }

    /** Called around each command of a client. `acquires`: the command may start an acquisition, so the one for pictures
     *  is suspended. */
    void beginCommand(const std::string& text, bool acquires);
    void endCommand(bool acquires);
    /** Parameters may have changed. */
    void noteChanges() const;

    /** Ticks of events by the design's names, whose pointers do not change. */
    using EventTicks = std::map<const char*, std::vector<std::uint64_t>>;
    /** Takes the events from the board's queue, unless a command is running, which may use them. */
    void takeEvents() const;

    /** Ends all waits; afterwards there is no work and there are no pictures. */
    void close();

    const StationAccess access;
    CommandThread commands;
    const std::unique_ptr<LivePictures> pictures; // null without a virtual board
    // Callbacks of the interfaces, set by their constructors.
    std::vector<std::function<void()>> onChange;
    std::vector<std::function<void(const EventTicks&)>> onEvents;
};

} // namespace serve

#endif
