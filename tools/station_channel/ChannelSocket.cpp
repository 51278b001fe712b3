#include "station_channel/ChannelSocket.h"

#include "applet_tools/base/socket_descriptors.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <utility>

namespace station_channel {
namespace {

constexpr timeval longestSend{5, 0};
constexpr int socketBytes = 4 * static_cast<int>(mostBytes);

} // namespace

ChannelSocket::ChannelSocket(Descriptor socket) : m_socket(std::move(socket)), m_buffer(mostBytes) {
    setsockopt(m_socket.number(), SOL_SOCKET, SO_SNDTIMEO, &longestSend, sizeof longestSend);
    setsockopt(m_socket.number(), SOL_SOCKET, SO_SNDBUF, &socketBytes, sizeof socketBytes);
}

bool ChannelSocket::send(std::span<const std::uint8_t> bytes, Wait wait, int descriptor) const {
    const std::span<const int> descriptors(&descriptor, descriptor >= 0 ? 1 : 0);
    return applet_tools::sendWith(m_socket.number(), bytes, descriptors,
                                  wait == Wait::never ? MSG_DONTWAIT : 0) >= 0;
}

std::optional<Packet> ChannelSocket::receive() {
    applet_tools::Received received = applet_tools::receiveWith(m_socket.number(), m_buffer, 0);
    if (received.count <= 0) return std::nullopt;
    if (received.isCut)
        throw Malformed("the received message is longer than " + std::to_string(mostBytes) + " bytes");
    Packet packet;
    packet.bytes.assign(m_buffer.begin(), m_buffer.begin() + received.count);
    if (!received.descriptors.empty())
        packet.descriptor = std::move(received.descriptors.front()); // the others are closed
    return packet;
}

bool ChannelSocket::waitReadable(int milliseconds) const {
    pollfd polled{m_socket.number(), POLLIN, 0};
    return poll(&polled, 1, milliseconds) > 0;
}

void ChannelSocket::close() const { shutdown(m_socket.number(), SHUT_RDWR); }

} // namespace station_channel
