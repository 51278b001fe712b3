/** The connection to a station that another process serves. */
#ifndef PRODUCER_DEVICE_SERVED_STATIONLINK_H
#define PRODUCER_DEVICE_SERVED_STATIONLINK_H

#include "station_channel/ChannelSocket.h"
#include "station_channel/SharedMemory.h"
#include "station_channel/messages.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace producer {

/** Called by the thread of the link, which must not send requests. */
class LinkListener {
public:
    virtual void show(const station_channel::Picture& picture,
                      const station_channel::SharedMemory& memory) = 0;
    virtual void happen(const station_channel::Event& event) = 0;
    /** The link is lost. Called at most once. */
    virtual void lose(const std::string& reason) = 0;

protected:
    ~LinkListener() = default;
};

/** Thread-safe. A thread receives messages. The station is not trusted: an invalid message ends the link. */
class StationLink {
public:
    /** Throws IO if there is no such station, or one of another version. */
    explicit StationLink(const std::string& name);
    ~StationLink();
    StationLink(const StationLink&) = delete;
    StationLink& operator=(const StationLink&) = delete;

    /** Sends a request and returns its answer, a T. Throws the error for a refusal, and IO if the link is lost or the
     *  station does not answer. */
    template <typename T> T ask(station_channel::Request request) {
        const station_channel::Answer answer = answerTo(std::move(request));
        if (const T* expected = std::get_if<T>(&answer)) return *expected;
        refuse(answer);
    }
    /** Sends a request that has no answer. Returns false if it was not sent: the link is lost, or the station does not
     *  read. */
    bool send(station_channel::Request request);

    /** Sets the listener, which may be null. Returns after the last call of the previous one. The result is the reason
     *  why the link is lost, empty if it is not. */
    std::optional<std::string> listen(LinkListener* listener);
    /** Ends the link and its thread. */
    void finish();

private:
    station_channel::Answer answerTo(station_channel::Request request);
    [[noreturn]] void refuse(const station_channel::Answer& answer) const;
    void work();
    void handle(station_channel::Packet packet);
    void lose(const std::string& reason);
    /** Calls the function with the listener, if there is one. */
    template <typename Function> void withListener(Function function);

    const std::string m_name;
    station_channel::ChannelSocket m_socket;
    std::mutex m_asking; // held from a request to its answer
    std::mutex m_mutex;  // guards the members below
    std::condition_variable m_changed;
    std::uint32_t m_number = 0; // of the latest request
    std::optional<station_channel::Answer> m_answer;
    std::optional<std::string> m_loss; // why the link is lost
    LinkListener* m_listener = nullptr;
    bool m_isCalling = false; // the listener is used without the lock
    std::thread m_thread;     // last, as it uses the other members
};

} // namespace producer

#endif
