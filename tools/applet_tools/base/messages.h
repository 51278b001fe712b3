/** Messages between processes: JSON values over a local stream socket, with open files beside them. */
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

/** Sends the message; the other side gets open files of its own for the descriptors, at most eight. A dead socket
 *  raises no signal. False when the other side is gone. */
bool sendMessage(int socket, const nlohmann::json& message, std::span<const int> descriptors = {});

/** Reads messages from one socket, which it does not own. What the other side sends may be anything. */
class MessageReader {
public:
    /** A longer message than `mostBytes` is refused before memory is taken for it. */
    explicit MessageReader(int socket, std::size_t mostBytes = std::numeric_limits<std::size_t>::max())
        : m_socket(socket)
        , m_mostBytes(mostBytes) {}

    /** Waits for a whole message. Nothing at the end of the stream or when the socket fails. Throws Failure for what
     *  is not a message; the stream is of no use then. */
    std::optional<nlohmann::json> wait();
    /** Reads what has arrived, without waiting. False at the end of the stream or when the socket fails. */
    bool readArrived();
    /** The next message, if one has arrived as a whole. Throws as wait(). */
    std::optional<nlohmann::json> next();
    /** The descriptors that have come with the messages since they were last taken. */
    std::vector<Descriptor> takeDescriptors() { return std::exchange(m_descriptors, {}); }

private:
    bool read(int flags);

    int m_socket;
    std::size_t m_mostBytes;
    std::vector<std::uint8_t> m_bytes; // that have arrived and were not taken
    std::vector<Descriptor> m_descriptors;
};

} // namespace applet_tools

#endif
