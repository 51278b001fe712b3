/** Events of the virtual board's station, as lines of JSON. */
#ifndef APPLET_TOOLS_STATION_EVENTLOG_H
#define APPLET_TOOLS_STATION_EVENTLOG_H

#include "applet_tools/applet/Instance.h"
#include "applet_tools/station/ticks.h"

#include <cstdint>
#include <string>

namespace applet_tools {

class EventLog {
public:
    /** So much time may pass at most between two calls of take(), or the board's queue loses events. */
    static constexpr Ticks longestPause = ticksPerSecond / 10'000;

    /** From now on: events so far are left out. */
    explicit EventLog(Instance& instance);

    /** The events since the last call, one a line: {"tick", "time" in seconds, "name", "picture"}; `picture` is the number
     *  of the one that was waited for. */
    std::string take(std::int64_t picture);
    /** How many of them the board's queue has lost. */
    std::int64_t lost() const;

private:
    std::int64_t dropped() const;

    Instance& m_instance;
    std::int64_t m_droppedBefore;
};

} // namespace applet_tools

#endif
