/** The events of a virtual board's station. */
#ifndef APPLET_HOST_EVENTS_H
#define APPLET_HOST_EVENTS_H

#include "applet_host/AppletHost.h"

#include <array>
#include <cstddef>
#include <span>

namespace applet_host {

/** Takes the events out of the station's queue, and calls the function with each. Also ends if events come as fast as they are
 *  taken. */
template <typename Function>
void takeEvents(const BoardFunctions& board, LOOMdevice* device, Function function) {
    constexpr std::size_t piece = 256, mostPieces = 512; // twice the queue
    std::array<vboard_event, piece> events{};
    for (std::size_t i = 0; i < mostPieces; ++i) {
        const int taken = board.next_events(device, events.data(), events.size());
        if (taken <= 0) return;
        for (const vboard_event& event : std::span(events).first(static_cast<std::size_t>(taken)))
            function(event);
    }
}

} // namespace applet_host

#endif
