#include "applet_tools/base/messages.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/socket_descriptors.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

namespace applet_tools {
namespace {

using nlohmann::json;

/** A message is its size in bytes, in native byte order, followed by the value as CBOR. */
using Size = std::uint64_t;

} // namespace

bool sendMessage(int socket, const json& message, std::span<const int> descriptors) {
    std::vector<std::uint8_t> bytes(sizeof(Size));
    json::to_cbor(message, bytes);
    const Size size = bytes.size() - sizeof(Size);
    std::memcpy(bytes.data(), &size, sizeof size);
    for (std::span<const std::uint8_t> rest = bytes; !rest.empty(); descriptors = {}) {
        const ssize_t count = sendWith(socket, rest, descriptors, 0);
        if (count <= 0) return false;
        rest = rest.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

bool MessageReader::read(int flags) {
    constexpr std::size_t most = 65536;
    const std::size_t before = m_bytes.size();
    m_bytes.resize(before + most);
    Received received = receiveWith(m_socket, std::span(m_bytes).subspan(before), flags);
    const bool isNothingYet = received.count < 0 && errno == EAGAIN;
    m_bytes.resize(before + static_cast<std::size_t>(std::max<ssize_t>(received.count, 0)));
    std::ranges::move(received.descriptors, std::back_inserter(m_descriptors));
    return received.count > 0 || isNothingYet;
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
