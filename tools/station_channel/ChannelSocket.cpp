#include "station_channel/ChannelSocket.h"

#include "applet_tools/base/socket_descriptors.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>
#include <utility>
#include <vector>

namespace station_channel {
namespace {

using applet_tools::SocketDescriptors;

constexpr timeval longestSend{5, 0};
constexpr int socketBytes = 4 * static_cast<int>(mostBytes);

} // namespace

ChannelSocket::ChannelSocket(Descriptor socket) : m_socket(std::move(socket)), m_buffer(mostBytes) {
    setsockopt(m_socket.number(), SOL_SOCKET, SO_SNDTIMEO, &longestSend, sizeof longestSend);
    setsockopt(m_socket.number(), SOL_SOCKET, SO_SNDBUF, &socketBytes, sizeof socketBytes);
}

bool ChannelSocket::send(std::span<const std::uint8_t> bytes, Wait wait, int descriptor) const {
    // sendmsg only reads. NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
    iovec part{const_cast<std::uint8_t*>(bytes.data()), bytes.size()};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    SocketDescriptors descriptors;
    if (descriptor >= 0) descriptors.send(header, {&descriptor, 1});
    const int flags = MSG_NOSIGNAL | (wait == Wait::never ? MSG_DONTWAIT : 0);
    ssize_t sent = -1;
    do
        sent = sendmsg(m_socket.number(), &header, flags);
    while (sent < 0 && errno == EINTR);
    return sent >= 0;
}

std::optional<Packet> ChannelSocket::receive() {
    iovec part{m_buffer.data(), m_buffer.size()};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    SocketDescriptors expected;
    expected.expect(header);
    ssize_t count = -1;
    do
        count = recvmsg(m_socket.number(), &header, MSG_CMSG_CLOEXEC);
    while (count < 0 && errno == EINTR);
    if (count <= 0) return std::nullopt;
    std::vector<Descriptor> descriptors = SocketDescriptors::takenFrom(header);
    Packet packet;
    if (!descriptors.empty()) packet.descriptor = std::move(descriptors.front()); // the others are closed
    if ((header.msg_flags & MSG_TRUNC) != 0)
        throw Malformed("the received message is longer than " + std::to_string(mostBytes) + " bytes");
    packet.bytes.assign(m_buffer.begin(), m_buffer.begin() + count);
    return packet;
}

bool ChannelSocket::waitReadable(int milliseconds) const {
    pollfd polled{m_socket.number(), POLLIN, 0};
    return poll(&polled, 1, milliseconds) > 0;
}

void ChannelSocket::close() const { shutdown(m_socket.number(), SHUT_RDWR); }

} // namespace station_channel
