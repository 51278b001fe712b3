/** Events of the virtual board's station, as lines of JSON. */
#ifndef APPLET_TOOLS_STATION_EVENTLOG_H
#define APPLET_TOOLS_STATION_EVENTLOG_H

#include "applet_tools/applet/Instance.h"
#include "applet_tools/applet/timing/ticks.h"

#include <cstdint>
#include <string>

namespace applet_tools {

class EventLog {
public:
    /** The longest time between two calls of take(); with more the board's queue loses events. */
    static constexpr Ticks longestPause = ticksPerSecond / 10'000;

    /** Begins now: earlier events are left out. */
    explicit EventLog(Instance& instance);

    /** The events since the last call, one per line: {"tick", "time" in seconds, "name", "picture"};
     *  `picture` is the number of the picture being waited for. */
    std::string take(std::int64_t picture);
    /** Number of events lost in the board's queue. */
    std::int64_t lost() const;

private:
    std::int64_t dropped() const;

    Instance& m_instance;
    std::int64_t m_droppedBefore;
};

} // namespace applet_tools

#endif
