// The tables that map event names to masks and back, built once from the design's list.

#include "entry/PublishedParameters.h"
#include "trigger/internal_events.h"

#include <algorithm>
#include <cstddef>
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

/** Mask of the event at this position of the design's list; past the 64th it is 0. */
std::uint64_t maskAt(std::ptrdiff_t position) { return position < 64 ? std::uint64_t{1} << position : 0; }

} // namespace

void PublishedParameters::publishEvents() {
    const std::vector<const TslEvent*> events = eventsOf(designHandle());
    for (auto event = events.begin(); event != events.end(); ++event)
        if ((*event)->publication == forPublication && (*event)->name != nullptr)
            publishEvent((*event)->name, maskAt(event - events.begin()));

    for (const InternalEventMetaInfo& row : internalEvents) {
        const auto event = std::ranges::find_if(
            events, [&row](const TslEvent* candidate) { return isNamed(candidate, row.designName); });
        if (event == events.end()) {
            log(vexo::tools::logging::levels::refusedCall, "cannot retrieve event id for internal event: '",
                row.designName, "'");
            continue;
        }
        // Replaces the design's name: both names map to the mask, the mask maps to this one.
        const std::uint64_t mask = maskAt(event - events.begin());
        publishEvent(row.name, mask);
        noteInternalEvent(mask, row);
    }
}

void PublishedParameters::publishEvent(const char* name, std::uint64_t mask) {
    m_eventMaskByName.insert_or_assign(name, mask);
    m_eventNameByMask.insert_or_assign(mask, name);
}
