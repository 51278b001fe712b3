/** The applet's events: their names, and what is known of them process-wide by their mask. */
#ifndef TRIGGER_INTERNAL_EVENTS_H
#define TRIGGER_INTERNAL_EVENTS_H

#include <cstdint>
#include <span>

/** One event of the applet. Its description is empty for all of them. */
struct InternalEventMetaInfo {
    const char* name;       // under which a client asks for it
    const char* designName; // under which the design lists it
    const char* dataName;   // of the data that comes with it
    std::int32_t value;
};

/** In the order of their lookup. */
extern const std::span<const InternalEventMetaInfo> internalEvents;

/** Records the event of a mask for the whole process; the first one of a mask stays. Any thread. */
void noteInternalEvent(std::uint64_t mask, const InternalEventMetaInfo& event);

/** The event recorded for exactly this mask, or null. Any thread. */
const InternalEventMetaInfo* findInternalEvent(std::uint64_t mask);

#endif
