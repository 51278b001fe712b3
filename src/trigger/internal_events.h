/** The applet's events: their names, and the process-wide lookup by mask. */
#ifndef TRIGGER_INTERNAL_EVENTS_H
#define TRIGGER_INTERNAL_EVENTS_H

#include <cstdint>
#include <span>

/** One event of the applet. Its description is empty for all of them. */
struct InternalEventMetaInfo {
    const char* name;       // used by clients
    const char* designName; // used in the design's list
    const char* dataName;   // of the data that comes with it
    std::int32_t value;
};

/** In the order of their lookup. */
extern const std::span<const InternalEventMetaInfo> internalEvents;

/** Records the event of a mask for the whole process; the first one of a mask stays. Thread-safe. */
void noteInternalEvent(std::uint64_t mask, const InternalEventMetaInfo& event);

/** The event recorded for exactly this mask, or null. Thread-safe. */
const InternalEventMetaInfo* findInternalEvent(std::uint64_t mask);

#endif
