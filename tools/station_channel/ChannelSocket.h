/** A local socket of packets. */
#ifndef STATION_CHANNEL_CHANNELSOCKET_H
#define STATION_CHANNEL_CHANNELSOCKET_H

#include "applet_tools/base/Descriptor.h"
#include "station_channel/messages.h"

#include <cstdint>
#include <optional>
#include <span>

namespace station_channel {

using applet_tools::Descriptor;

struct Packet {
    Bytes bytes;
    Descriptor descriptor; /**< none if the sender gave none */
};

/** Connected. Thread-safe: packets do not mix. */
class ChannelSocket {
public:
    /** The socket must be of the type SOCK_SEQPACKET. */
    explicit ChannelSocket(Descriptor socket);

    enum class Wait { never, forRoom };
    /** Sends a packet; the receiver gets a descriptor of its own. False if it was not sent: the other side has closed, or
     *  has not read for some seconds (with `forRoom`), or there is no room now. */
    bool send(std::span<const std::uint8_t> bytes, Wait wait, int descriptor = -1) const;
    /** Waits for a packet. Empty when the other side has closed, or after close(). Throws Malformed for one that is longer
     *  than a message. For one thread at a time. */
    std::optional<Packet> receive();
    /** True when a packet has come, or the other side has closed. */
    bool waitReadable(int milliseconds) const;
    /** Ends the connection, and waits of other threads. */
    void close() const;

private:
    const Descriptor m_socket;
    Bytes m_buffer; // for receive()
};

} // namespace station_channel

#endif
