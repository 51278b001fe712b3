/** A running station, as its interfaces share it. */
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

/** Made, used and closed by the command thread; other threads use `access`, `commands` and `pictures`. */
struct LiveStation {
    explicit LiveStation(const StationAccess& stationAccess);

    applet_tools::Instance& instance() const { return access.live->instance(); }
    bool isVirtual() const { return access.board == "virtual"; }

    /** Around each command of a client. `acquires`: it may start an acquisition, so the one for pictures stops. */
    void beginCommand(const std::string& text, bool acquires);
    void endCommand(bool acquires);
    /** Parameters may have changed. */
    void noteChanges() const;

    /** Ticks of events by the design's names, which stay where they are. */
    using EventTicks = std::map<const char*, std::vector<std::uint64_t>>;
    /** Takes the events from the board's queue, unless a command runs, which may want them for itself. */
    void takeEvents() const;

    /** Ends all waits: no work is done and no picture comes any more. */
    void close();

    const StationAccess access;
    CommandThread commands;
    const std::unique_ptr<LivePictures> pictures; // null without a virtual board
    // What the interfaces do when something happens; set by their constructors.
    std::vector<std::function<void()>> onChange;
    std::vector<std::function<void(const EventTicks&)>> onEvents;
};

} // namespace serve

#endif
