/** The events of the design, by their names. */
#ifndef APPLET_TOOLS_APPLET_EVENTS_H
#define APPLET_TOOLS_APPLET_EVENTS_H

#include "applet_host/Parameter.h"
#include "applet_tools/applet/Instance.h"

#include <cstdint>
#include <string>
#include <vector>

namespace applet_tools {

/** All events, in the order of their masks. */
std::vector<applet_host::EventName> eventsOf(Instance& instance);

/** The mask of the event with that name. Throws UnknownName, with the closest names, when there is none. */
std::uint64_t eventMask(Instance& instance, const std::string& name);

} // namespace applet_tools

#endif
