#include "serve/http/state/EventHub.h"

#include <algorithm>

namespace serve {
namespace {

constexpr std::size_t mostMessages = 2000;

} // namespace

EventHub::Listener::Listener(EventHub& hub) : m_hub(hub) {
    const std::lock_guard guard(m_hub.m_mutex);
    ++m_hub.m_listeners;
}

EventHub::Listener::~Listener() {
    const std::lock_guard guard(m_hub.m_mutex);
    if (--m_hub.m_listeners == 0) m_hub.m_messages.clear();
}

std::size_t EventHub::listeners() const {
    const std::lock_guard guard(m_mutex);
    return m_listeners;
}

void EventHub::publish(const std::string& name, const Json& data) {
    constexpr auto replace = Json::error_handler_t::replace;
    auto message = std::make_shared<const std::string>(
        "event: " + name + "\ndata: " + data.dump(-1, ' ', false, replace) + "\n\n");
    const std::lock_guard guard(m_mutex);
    if (m_listeners == 0) return;
    m_messages.push_back(std::move(message));
    ++m_end;
    if (m_messages.size() > mostMessages) m_messages.pop_front();
    m_changed.notify_all();
}

std::uint64_t EventHub::end() const {
    const std::lock_guard guard(m_mutex);
    return m_end;
}

std::vector<EventHub::Message> EventHub::wait(std::uint64_t& position, Clock::time_point due) {
    std::unique_lock lock(m_mutex);
    m_changed.wait_until(lock, due, [&] { return m_end > position || m_isClosed; });
    const std::uint64_t first = m_end - m_messages.size();
    const std::uint64_t from = std::clamp(position, first, m_end);
    position = m_end;
    return {m_messages.end() - static_cast<std::ptrdiff_t>(m_end - from), m_messages.end()};
}

void EventHub::close() {
    const std::lock_guard guard(m_mutex);
    m_isClosed = true;
    m_changed.notify_all();
}

bool EventHub::isClosed() const {
    const std::lock_guard guard(m_mutex);
    return m_isClosed;
}

} // namespace serve
