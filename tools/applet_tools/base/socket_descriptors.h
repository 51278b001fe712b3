/** Bytes of a local socket with the open files that are sent with them. */
#ifndef APPLET_TOOLS_BASE_SOCKET_DESCRIPTORS_H
#define APPLET_TOOLS_BASE_SOCKET_DESCRIPTORS_H

#include "applet_tools/base/Descriptor.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

namespace applet_tools {

/** The control data of a message; must live until the message is sent or received. */
class SocketDescriptors {
public:
    /** Of one message. */
    static constexpr std::size_t most = 8;

    /** Sends copies of the descriptors, which may be none, with the message. */
    void send(msghdr& header, std::span<const int> descriptors) {
        if (descriptors.empty()) return;
        header.msg_control = m_control.data();
        header.msg_controllen = CMSG_SPACE(descriptors.size_bytes());
        cmsghdr* const item = CMSG_FIRSTHDR(&header);
        item->cmsg_level = SOL_SOCKET;
        item->cmsg_type = SCM_RIGHTS;
        item->cmsg_len = CMSG_LEN(descriptors.size_bytes());
        std::memcpy(CMSG_DATA(item), descriptors.data(), descriptors.size_bytes());
    }

    /** Makes room for those that come with the message. */
    void expect(msghdr& header) {
        header.msg_control = m_control.data();
        header.msg_controllen = m_control.size();
    }

    /** Takes those that came with the received message. */
    static std::vector<Descriptor> takenFrom(msghdr& header) {
        std::vector<Descriptor> taken;
        for (cmsghdr* item = CMSG_FIRSTHDR(&header); item != nullptr; item = CMSG_NXTHDR(&header, item)) {
            if (item->cmsg_level != SOL_SOCKET || item->cmsg_type != SCM_RIGHTS) continue;
            const std::size_t count = (item->cmsg_len - CMSG_LEN(0)) / sizeof(int);
            for (std::size_t i = 0; i < count; ++i) {
                int number = -1;
                std::memcpy(&number, CMSG_DATA(item) + i * sizeof number, sizeof number);
                taken.emplace_back(number);
            }
        }
        return taken;
    }

private:
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int) * most)> m_control{};
};

/** What sendmsg returns, after an interruption tried again; the descriptors, which may be none, go with the first byte. */
inline ssize_t sendWith(int socket, std::span<const std::uint8_t> bytes, std::span<const int> descriptors,
                        int flags) {
    // sendmsg only reads. NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
    iovec part{const_cast<std::uint8_t*>(bytes.data()), bytes.size()};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    SocketDescriptors sent;
    sent.send(header, descriptors);
    ssize_t count = -1;
    do
        count = sendmsg(socket, &header, flags | MSG_NOSIGNAL);
    while (count < 0 && errno == EINTR);
    return count;
}

struct Received {
    ssize_t count; /**< what recvmsg returns, with its errno */
    bool isCut;    /**< the rest of the message did not fit */
    std::vector<Descriptor> descriptors;
};

/** Receives into the buffer, after an interruption again. */
inline Received receiveWith(int socket, std::span<std::uint8_t> buffer, int flags) {
    iovec part{buffer.data(), buffer.size()};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    SocketDescriptors expected;
    expected.expect(header);
    ssize_t count = -1;
    do
        count = recvmsg(socket, &header, flags | MSG_CMSG_CLOEXEC);
    while (count < 0 && errno == EINTR);
    if (count <= 0) return {count, false, {}};
    return {count, (header.msg_flags & MSG_TRUNC) != 0, SocketDescriptors::takenFrom(header)};
}

} // namespace applet_tools

#endif
