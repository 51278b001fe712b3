#include "base/EventQueue.h"

#include "base/hexadecimal.h"

#include <algorithm>
#include <chrono>

namespace producer {
namespace {

/** A longer wait never times out. */
constexpr std::uint64_t longestWait = std::uint64_t{1000} * 60 * 60 * 24 * 365;

} // namespace

void EventQueue::open() {
    const std::lock_guard lock(m_mutex);
    if (m_isOpen) throw Error(GC_ERR_RESOURCE_IN_USE, "the event is registered already");
    m_isOpen = true;
    ++m_opening;
    m_fired = 0;
}

void EventQueue::close() {
    const std::lock_guard lock(m_mutex);
    if (!m_isOpen) throw Error(GC_ERR_INVALID_PARAMETER, "the event is not registered");
    m_isOpen = false;
    m_events.clear();
    m_kills = 0;
    m_changed.notify_all();
}

bool EventQueue::isOpen() const {
    const std::lock_guard lock(m_mutex);
    return m_isOpen;
}

void EventQueue::push(std::string data) {
    const std::lock_guard lock(m_mutex);
    if (!m_isOpen && !m_keeps) return;
    if (m_events.size() == mostEvents) m_events.pop_front();
    m_events.push_back(std::move(data));
    ++m_fired;
    m_changed.notify_one();
}

void EventQueue::take(void* buffer, std::size_t* size, std::uint64_t milliseconds) {
    std::size_t& room = required(size, "size");
    std::unique_lock lock(m_mutex);
    const std::uint64_t opening = m_opening;
    const auto isClosed = [&] { return !m_isOpen || m_opening != opening; };
    const auto isOver = [&] { return isClosed() || m_kills > 0 || !m_events.empty() || m_end; };
    if (milliseconds < longestWait) {
        m_changed.wait_for(lock, std::chrono::milliseconds(milliseconds), isOver);
    } else {
        m_changed.wait(lock, isOver);
    }
    if (isClosed()) throw Error(GC_ERR_ABORT, "the event was unregistered");
    if (m_kills > 0) {
        --m_kills;
        if (!m_events.empty()) m_changed.notify_one(); // for another waiter
        throw Error(GC_ERR_ABORT, "the wait was ended by EventKill");
    }
    if (m_events.empty() && m_end) throw Error(GC_ERR_IO, *m_end);
    if (m_events.empty())
        throw Error(GC_ERR_TIMEOUT, "no event came within " + std::to_string(milliseconds) + " ms");
    const std::string& data = m_events.front();
    if (buffer != nullptr && room < data.size()) m_changed.notify_one();
    putBytes(data, buffer, &room);
    m_events.pop_front();
}

void EventQueue::end(const std::string& reason) {
    const std::lock_guard lock(m_mutex);
    m_end = reason;
    m_changed.notify_all();
}

void EventQueue::kill() {
    const std::lock_guard lock(m_mutex);
    ++m_kills;
    m_changed.notify_one();
}

std::vector<std::string> EventQueue::flush() {
    const std::lock_guard lock(m_mutex);
    std::vector<std::string> events(m_events.begin(), m_events.end());
    m_events.clear();
    return events;
}

bool EventQueue::has(const std::function<bool(const std::string&)>& test) const {
    const std::lock_guard lock(m_mutex);
    return std::ranges::any_of(m_events, test);
}

std::size_t EventQueue::size() const {
    const std::lock_guard lock(m_mutex);
    return m_events.size();
}

Answer EventQueue::info(std::int32_t command) const {
    const std::lock_guard lock(m_mutex);
    switch (command) {
    case EVENT_EVENT_TYPE:
        return Answer::int32(m_kind);
    case EVENT_NUM_IN_QUEUE:
        return Answer::size(m_events.size());
    case EVENT_NUM_FIRED:
        return Answer::uint64(m_fired);
    case EVENT_SIZE_MAX:
    case EVENT_INFO_DATA_SIZE_MAX:
        return Answer::size(m_dataSize);
    default:
        refuseCommand("an event", command);
    }
}

std::string EventQueue::numbered(std::uint64_t id, std::string_view value) {
    std::string data(sizeof id, 0);
    std::memcpy(data.data(), &id, sizeof id);
    return data.append(value);
}

Answer EventQueue::dataInfo(std::string_view data, std::int32_t command) const {
    if (command < EVENT_DATA_ID || command > EVENT_DATA_NUMID) refuseCommand("the data of an event", command);
    if (m_kind == EVENT_NEW_BUFFER) {
        EVENT_NEW_BUFFER_DATA buffer{};
        if (data.size() != sizeof buffer)
            throw Error(GC_ERR_INVALID_PARAMETER, "the data is not that of a new buffer event");
        std::memcpy(&buffer, data.data(), sizeof buffer);
        if (command == EVENT_DATA_ID) return Answer::pointer(buffer.BufferHandle);
        if (command == EVENT_DATA_VALUE) return Answer::pointer(buffer.pUserPointer);
        refuseForNow("a new buffer event has no number");
    }
    if (m_kind == EVENT_ERROR) {
        GC_ERROR code = 0;
        if (data.size() < sizeof code)
            throw Error(GC_ERR_INVALID_PARAMETER, "the data is not that of an error event");
        std::memcpy(&code, data.data(), sizeof code);
        if (command == EVENT_DATA_ID) return Answer::int32(code);
        if (command == EVENT_DATA_VALUE) return Answer::text(data.substr(sizeof code));
        refuseForNow("an error event has a code and a text");
    }
    if (m_kind == EVENT_FEATURE_INVALIDATE) {
        if (command != EVENT_DATA_ID) refuseForNow("the event has a feature's name and nothing else");
        return Answer::text(data.substr(0, data.find('\0')));
    }
    std::uint64_t id = 0;
    if (data.size() < sizeof id)
        throw Error(GC_ERR_INVALID_PARAMETER, "the data is not that of an event of this kind");
    std::memcpy(&id, data.data(), sizeof id);
    if (command == EVENT_DATA_NUMID) return Answer::uint64(id);
    if (command == EVENT_DATA_VALUE) return Answer::bytes(data.substr(sizeof id));
    return Answer::text(wholeBytes(id));
}

} // namespace producer
