#include "station_channel/ChannelSocket.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>
#include <cstring>

namespace station_channel {
namespace {

constexpr timeval longestSend{5, 0};
constexpr int socketBytes = 4 * static_cast<int>(mostBytes);

/** Room for more descriptors than are expected, so that those that came are known and closed. */
constexpr std::size_t mostDescriptors = 8;
using Control = char[CMSG_SPACE(sizeof(int) * mostDescriptors)];

/** The first descriptor; others are closed. */
Descriptor descriptorFrom(msghdr& header) {
    Descriptor first;
    for (cmsghdr* item = CMSG_FIRSTHDR(&header); item != nullptr; item = CMSG_NXTHDR(&header, item)) {
        if (item->cmsg_level != SOL_SOCKET || item->cmsg_type != SCM_RIGHTS) continue;
        const std::size_t count = (item->cmsg_len - CMSG_LEN(0)) / sizeof(int);
        for (std::size_t i = 0; i < count; ++i) {
            int number = -1;
            std::memcpy(&number, CMSG_DATA(item) + i * sizeof number, sizeof number);
            Descriptor own(number);
            if (!first) first = std::move(own);
        }
    }
    return first;
}

} // namespace

ChannelSocket::ChannelSocket(Descriptor socket) : m_socket(std::move(socket)), m_place(mostBytes) {
    setsockopt(m_socket.number(), SOL_SOCKET, SO_SNDTIMEO, &longestSend, sizeof longestSend);
    setsockopt(m_socket.number(), SOL_SOCKET, SO_SNDBUF, &socketBytes, sizeof socketBytes);
}

bool ChannelSocket::send(std::span<const std::uint8_t> bytes, Wait wait, int descriptor) const {
    // sendmsg only reads. NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
    iovec part{const_cast<std::uint8_t*>(bytes.data()), bytes.size()};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof descriptor)] = {};
    if (descriptor >= 0) {
        header.msg_control = control;
        header.msg_controllen = sizeof control;
        cmsghdr* const item = CMSG_FIRSTHDR(&header);
        item->cmsg_level = SOL_SOCKET;
        item->cmsg_type = SCM_RIGHTS;
        item->cmsg_len = CMSG_LEN(sizeof descriptor);
        std::memcpy(CMSG_DATA(item), &descriptor, sizeof descriptor);
    }
    const int flags = MSG_NOSIGNAL | (wait == Wait::never ? MSG_DONTWAIT : 0);
    ssize_t sent = -1;
    do
        sent = sendmsg(m_socket.number(), &header, flags);
    while (sent < 0 && errno == EINTR);
    return sent >= 0;
}

std::optional<Packet> ChannelSocket::receive() {
    iovec part{m_place.data(), m_place.size()};
    alignas(cmsghdr) Control control{};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    header.msg_control = control;
    header.msg_controllen = sizeof control;
    ssize_t count = -1;
    do
        count = recvmsg(m_socket.number(), &header, MSG_CMSG_CLOEXEC);
    while (count < 0 && errno == EINTR);
    if (count <= 0) return std::nullopt;
    Packet packet{.bytes = {}, .descriptor = descriptorFrom(header)};
    if ((header.msg_flags & MSG_TRUNC) != 0)
        throw Malformed("a message came that is longer than " + std::to_string(mostBytes) + " bytes");
    packet.bytes.assign(m_place.begin(), m_place.begin() + count);
    return packet;
}

bool ChannelSocket::waitReadable(int milliseconds) const {
    pollfd polled{m_socket.number(), POLLIN, 0};
    return poll(&polled, 1, milliseconds) > 0;
}

void ChannelSocket::close() const { shutdown(m_socket.number(), SHUT_RDWR); }

} // namespace station_channel
