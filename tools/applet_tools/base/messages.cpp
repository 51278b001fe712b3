#include "applet_tools/base/messages.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/socket_descriptors.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace applet_tools {
namespace {

using nlohmann::json;

/** A message is its size in bytes, in native byte order, followed by the value as CBOR. */
using Size = std::uint64_t;

/** Descriptors are sent with the first byte. */
ssize_t sendSome(int socket, std::uint8_t* bytes, std::size_t count, std::span<const int> descriptors) {
    iovec part{bytes, count};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    SocketDescriptors sent;
    sent.send(header, descriptors);
    return sendmsg(socket, &header, MSG_NOSIGNAL);
}

} // namespace

bool sendMessage(int socket, const json& message, std::span<const int> descriptors) {
    std::vector<std::uint8_t> bytes(sizeof(Size));
    json::to_cbor(message, bytes);
    const Size size = bytes.size() - sizeof(Size);
    std::memcpy(bytes.data(), &size, sizeof size);
    for (std::size_t sent = 0; sent < bytes.size();) {
        const ssize_t count = sendSome(socket, bytes.data() + sent, bytes.size() - sent,
                                       sent == 0 ? descriptors : std::span<const int>());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        sent += static_cast<std::size_t>(count);
    }
    return true;
}

bool MessageReader::read(int flags) {
    constexpr std::size_t most = 65536;
    const std::size_t before = m_bytes.size();
    m_bytes.resize(before + most);
    iovec part{m_bytes.data() + before, most};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    SocketDescriptors descriptors;
    descriptors.expect(header);
    ssize_t count = -1;
    do
        count = recvmsg(m_socket, &header, flags | MSG_CMSG_CLOEXEC);
    while (count < 0 && errno == EINTR && flags == 0);
    const int error = errno;
    m_bytes.resize(before + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (count > 0)
        for (Descriptor& descriptor : SocketDescriptors::takenFrom(header))
            m_descriptors.push_back(std::move(descriptor));
    return count > 0 || (count < 0 && (error == EAGAIN || error == EINTR));
}

bool MessageReader::readArrived() { return read(MSG_DONTWAIT); }

std::optional<json> MessageReader::next() {
    Size size = 0;
    if (m_bytes.size() < sizeof size) return std::nullopt;
    std::memcpy(&size, m_bytes.data(), sizeof size);
    if (size > m_mostBytes)
        throw Failure("a message of " + numberText(size) + " bytes was received; at most " +
                      numberText(m_mostBytes) + " are allowed");
    if (m_bytes.size() - sizeof size < size) return std::nullopt;
    const auto begin = m_bytes.begin() + sizeof size;
    const auto end = begin + static_cast<std::ptrdiff_t>(size);
    json message = json::from_cbor(begin, end, true, false);
    m_bytes.erase(m_bytes.begin(), end);
    if (message.is_discarded()) throw Failure("the received bytes are not a message");
    return message;
}

std::optional<json> MessageReader::wait() {
    for (;;) {
        if (std::optional<json> message = next()) return message;
        if (!read(0)) return std::nullopt;
    }
}

} // namespace applet_tools
