/** The channel of a running station, for clients in other processes such as the GenTL producer. */
#ifndef SERVE_CHANNEL_CHANNELSERVER_H
#define SERVE_CHANNEL_CHANNELSERVER_H

#include "serve/StationLocation.h"
#include "serve/channel/ChannelClient.h"

#include <atomic>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <semaphore>
#include <thread>
#include <vector>

namespace serve {

/** Listens from the constructor to the destructor, both on the command thread. Accepts only processes of the same user,
 *  or of root. The location must be locked. */
class ChannelServer {
public:
    /** Throws Failure if the socket cannot be made. */
    ChannelServer(const StationLocation& location, LiveStation& station);
    ~ChannelServer();
    ChannelServer(const ChannelServer&) = delete;
    ChannelServer& operator=(const ChannelServer&) = delete;

private:
    void listen();
    void accept();
    bool isFull();
    /** The events that any client wants. */
    std::uint64_t wantedEvents();
    /** For the command thread. */
    void give(const LiveStation::EventTicks& taken);

    LiveStation& m_station;
    const std::filesystem::path m_path;
    const applet_tools::Descriptor m_socket;
    const applet_tools::Descriptor m_ending; // wakes the thread
    std::map<const char*, std::uint64_t>
        m_masks;                           // masks of events by the design's names, for the command thread
    std::atomic<bool> m_isAskedFor{false}; // the command thread has been asked to take events
    std::counting_semaphore<> m_slots{ChannelClient::mostClients};
    std::mutex m_mutex; // guards the member below
    std::vector<std::unique_ptr<ChannelClient>> m_clients;
    std::thread m_thread; // last, as it uses the other members
};

} // namespace serve

#endif
