/** Messages of a station for all listening clients. */
#ifndef SERVE_HTTP_STATE_EVENTHUB_H
#define SERVE_HTTP_STATE_EVENTHUB_H

#include "serve/http/protocol/HttpError.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace serve {

/** Keeps the latest messages. A slow listener misses the older ones and does not block others. */
class EventHub {
public:
    using Clock = std::chrono::steady_clock;
    using Message = std::shared_ptr<const std::string>; /**< the text of a server-sent event */

    void publish(const std::string& name, const Json& data);
    /** Returns the position of the next message. */
    std::uint64_t end() const;
    /** Returns the messages from `position` on and moves `position` behind them; waits for one until `due`. */
    std::vector<Message> wait(std::uint64_t& position, Clock::time_point due);
    /** Ends all waits. */
    void close();
    bool isClosed() const;

    /** Counts a listener while it exists. */
    class Listener {
    public:
        explicit Listener(EventHub& hub);
        ~Listener();
        Listener(const Listener&) = delete;
        Listener& operator=(const Listener&) = delete;

    private:
        EventHub& m_hub;
    };
    std::size_t listeners() const;

private:
    mutable std::mutex m_mutex; // guards the members below
    std::condition_variable m_changed;
    std::deque<Message> m_messages;
    std::uint64_t m_end = 0; // position after the last message
    std::size_t m_listeners = 0;
    bool m_isClosed = false;
};

} // namespace serve

#endif
