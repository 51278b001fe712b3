/** A client of a station in another process, connected by the channel. */
#ifndef SERVE_CHANNEL_CHANNELCLIENT_H
#define SERVE_CHANNEL_CHANNELCLIENT_H

#include "serve/live/LiveStation.h"
#include "station_channel/ChannelSocket.h"

#include <atomic>
#include <cstdint>
#include <semaphore>
#include <span>
#include <thread>
#include <vector>

namespace serve {

/**
 * Answers the client's requests on a separate thread, from the constructor to the destructor. The client is not trusted:
 * an invalid message ends the connection. No other thread waits for the client.
 */
class ChannelClient final : PictureReceiver {
public:
    static constexpr std::ptrdiff_t mostClients = 16; /**< limit of a station */

    /** `slots`: one for each client that is served. A client that gets no slot within some seconds is refused. */
    ChannelClient(LiveStation& station, std::counting_semaphore<>& slots, applet_tools::Descriptor socket);
    ~ChannelClient();
    ChannelClient(const ChannelClient&) = delete;
    ChannelClient& operator=(const ChannelClient&) = delete;

    /** The client has disconnected. */
    bool isOver() const { return m_isOver; }
    std::uint64_t wantedEvents() const { return m_wantedEvents; }
    /** Sends events that the client has requested; they are lost if it does not read. Any thread may call it. */
    void give(std::span<const station_channel::Event> events);

private:
    using Answer = station_channel::Answer;

    bool wantsPicture() const override;
    void take(const SharedPicture& picture) override;

    void work();
    Answer answerTo(const station_channel::Request& request);
    Answer execute(const station_channel::Hello& hello);
    Answer execute(const station_channel::Describe& describe);
    Answer execute(const station_channel::ReadValue& read);
    Answer execute(const station_channel::ReadState& read);
    Answer execute(const station_channel::WriteValue& write);
    Answer execute(const station_channel::ReadTime& read);
    Answer execute(const station_channel::Start& start);
    Answer execute(const station_channel::Stop& stop);
    Answer execute(const station_channel::Accept& accept);
    Answer execute(const station_channel::WantEvents& want);

    LiveStation& m_station;
    std::counting_semaphore<>& m_slots;
    station_channel::ChannelSocket m_socket;
    std::atomic<bool> m_isOver{false};
    std::atomic<std::uint64_t> m_wantedEvents{0};
    // Pictures since Start.
    std::atomic<std::uint64_t> m_sent{0}, m_received{0}, m_room{0};
    bool m_hasSlot = false, m_hasJoined = false; // for the thread
    std::thread m_thread;                        // last, as it uses the other members
};

} // namespace serve

#endif
