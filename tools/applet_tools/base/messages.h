/** Messages between processes: JSON values over a local stream socket, with optional open files. */
#ifndef APPLET_TOOLS_BASE_MESSAGES_H
#define APPLET_TOOLS_BASE_MESSAGES_H

#include "applet_tools/base/Descriptor.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace applet_tools {

/** Sends the message; the receiver gets its own copies of the descriptors, at most eight. A closed socket
 *  raises no signal. False when the receiver has closed. */
bool sendMessage(int socket, const nlohmann::json& message, std::span<const int> descriptors = {});

/** Reads messages from a socket that it does not own. The sender is not trusted. */
class MessageReader {
public:
    /** A message longer than `mostBytes` is refused before memory is allocated for it. */
    explicit MessageReader(int socket, std::size_t mostBytes = std::numeric_limits<std::size_t>::max())
        : m_socket(socket)
        , m_mostBytes(mostBytes) {}

    /** Waits for a whole message. Empty at the end of the stream or if the socket fails. Throws Failure for an
     *  invalid message; the stream cannot be used after that. */
    std::optional<nlohmann::json> wait();
    /** Reads the available bytes without waiting. False at the end of the stream or if the socket fails. */
    bool readArrived();
    /** The next complete message, if there is one. Throws like wait(). */
    std::optional<nlohmann::json> next();
    /** Takes the descriptors received since the last call. */
    std::vector<Descriptor> takeDescriptors() { return std::exchange(m_descriptors, {}); }

private:
    bool read(int flags);

    int m_socket;
    std::size_t m_mostBytes;
    std::vector<std::uint8_t> m_bytes; // received bytes that are not yet consumed
    std::vector<Descriptor> m_descriptors;
};

} // namespace applet_tools

#endif
