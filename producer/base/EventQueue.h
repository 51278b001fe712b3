/** The queue of an event handle. */
#ifndef PRODUCER_BASE_EVENTQUEUE_H
#define PRODUCER_BASE_EVENTQUEUE_H

#include "base/Answer.h"
#include "base/HandleTable.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace producer {

/**
 * Events of one kind of one module, oldest first. Thread-safe.
 *
 * Closed at first: it drops data, unless it `keeps` the data. Then it is also the output queue of a stream, and
 * buffers wait in it while no event is registered.
 */
class EventQueue final : public Object {
public:
    EventQueue(std::int32_t kind, std::size_t dataSize, bool keeps = false)
        : m_kind(kind)
        , m_dataSize(dataSize)
        , m_keeps(keeps) {}

    std::int32_t kind() const { return m_kind; }
    /** Throws RESOURCE_IN_USE. */
    void open();
    /** Discards all data; waiting threads get ABORT. Throws INVALID_PARAMETER if it is not open. */
    void close();
    bool isOpen() const;

    /** Adds an event. */
    void push(std::string data);
    /** Takes an event. With a null `buffer` it is discarded. Throws TIMEOUT, ABORT, IO, BUFFER_TOO_SMALL
     *  (the event stays). */
    void take(void* buffer, std::size_t* size, std::uint64_t milliseconds);
    /** No more data will come: once the queue is empty, take throws IO with this reason. */
    void end(const std::string& reason);
    /** Makes one call of take answer ABORT: a waiting one, or the next. */
    void kill();
    /** Removes all data and returns it. */
    std::vector<std::string> flush();
    /** Whether there is data for which the test is true. */
    bool has(const std::function<bool(const std::string&)>& test) const;
    std::size_t size() const;

    Answer info(std::int32_t command) const;
    /** Parses the data of an event. */
    Answer dataInfo(std::string_view data, std::int32_t command) const;

    /** The data of an event with an identifier: its number, then its bytes. */
    static std::string numbered(std::uint64_t id, std::string_view value);
    static std::string named(std::string_view name) { return std::string(name); }

private:
    /** Above this size the oldest events are dropped. */
    static constexpr std::size_t mostEvents = 65536;

    const std::int32_t m_kind;
    const std::size_t m_dataSize; // the maximum
    const bool m_keeps;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::string> m_events;
    bool m_isOpen = false;
    std::uint64_t m_opening = 0; // number of the latest one
    std::uint64_t m_kills = 0;   // that are not answered yet
    std::uint64_t m_fired = 0;
    std::optional<std::string> m_end; // why no more data comes
};

} // namespace producer

#endif
