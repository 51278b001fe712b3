// The tables that lead from event names to masks and back, built once from the design's list.

#include "entry/PublishedParameters.h"
#include "trigger/internal_events.h"

#include <cstring>
#include <vector>

namespace {

constexpr int mostEvents = 65;
constexpr std::uint32_t forPublication = 1;

std::vector<const TslEvent*> eventsOf(fpga_design* design) {
    std::vector<const TslEvent*> events;
    for (int index = 0; index < mostEvents; ++index) {
        const TslEvent* event = TslGetEvent(design, index);
        if (event == nullptr) break;
        events.push_back(event);
    }
    return events;
}

bool isNamed(const TslEvent* event, const char* name) {
    return event->name != nullptr && std::strcmp(event->name, name) == 0;
}

} // namespace

void PublishedParameters::publishEvents() {
    const std::vector<const TslEvent*> events = eventsOf(designHandle());

    std::uint64_t mask = 1; // doubled at each event; past the 64th it is 0
    for (const TslEvent* event : events) {
        if (event->publication == forPublication && event->name != nullptr) {
            m_eventMaskByName.insert_or_assign(event->name, mask);
            m_eventNameByMask.insert_or_assign(mask, event->name);
        }
        mask <<= 1;
    }

    for (const InternalEventMetaInfo& row : internalEvents) {
        mask = 1;
        auto event = events.begin();
        while (event != events.end() && !isNamed(*event, row.designName)) {
            ++event;
            mask <<= 1;
        }
        if (event == events.end()) {
            log(vexo::tools::logging::levels::refusedCall, "cannot retrieve event id for internal event: '",
                row.designName, "'");
            continue;
        }
        // The applet's name takes the place of the design's: both lead to the mask, the mask to this one.
        m_eventMaskByName.insert_or_assign(row.name, mask);
        m_eventNameByMask.insert_or_assign(mask, row.name);
        noteInternalEvent(mask, row);
    }
}
