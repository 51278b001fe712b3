#include "applet_tools/applet/events.h"

#include "applet_host/parameter_access.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"

#include <utility>

namespace applet_tools {

std::vector<applet_host::EventName> eventsOf(Instance& instance) {
    return applet_host::eventNames(instance.applet(), instance.fg());
}

std::uint64_t eventMask(Instance& instance, const std::string& name) {
    const std::uint64_t mask = instance.applet().Fg_getEventMask(instance.fg(), name.c_str());
    if (mask != 0) return mask;
    std::vector<std::string> names;
    for (applet_host::EventName& event : eventsOf(instance))
        names.push_back(std::move(event.name));
    std::vector<std::string> near = nearestWords(name, names);
    if (near.empty()) near = nearestParts(name, names);
    const std::string suggestion = near.empty() ? "; 'appletctl events' shows them" : didYouMean(near);
    throw UnknownName("there is no event " + inQuotedWord(name) + suggestion, std::move(near));
}

} // namespace applet_tools
