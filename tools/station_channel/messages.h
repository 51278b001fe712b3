/**
 * The messages between a served station and a client in another process of the same user and machine: sets and
 * reads of parameters, pictures, events.
 *
 * The client sends requests and the station answers each one that has a number, in their order. Pictures and events come
 * unasked. Each message is one packet of a local socket, so that a picture's memory comes with its message.
 */
#ifndef STATION_CHANNEL_MESSAGES_H
#define STATION_CHANNEL_MESSAGES_H

#include "applet_host/Parameter.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace station_channel {

/** Both sides must have the same. Hello and Refusal are the same in all versions. */
constexpr std::uint32_t protocolVersion = 1;
/** Of a message. The largest is a table of 16384 elements. */
constexpr std::size_t mostBytes = std::size_t{128} << 10;

// ---- From the client

/** The first message. */
struct Hello {
    std::uint32_t version = protocolVersion;
};
/** Asks for a Description that begins with this parameter. */
struct Describe {
    std::uint32_t first = 0;
};
struct ReadValue {
    std::string name;
};
struct ReadState {
    std::string name;
};
struct WriteValue {
    std::string name;
    applet_host::Value value;
};
struct ReadTime {};
/** From now on pictures are sent, as far as the client accepts them. */
struct Start {};
struct Stop {};
/** Pictures for which the client has memory now. */
struct Accept {
    std::uint64_t received = 0; /**< since Start */
    std::uint64_t room = 0;     /**< for so many more */
};
/** Events of the mask are sent. */
struct WantEvents {
    std::uint64_t mask = 0;
};
using Request = std::variant<Hello, Describe, ReadValue, ReadState, WriteValue, ReadTime, Start, Stop, Accept,
                             WantEvents>;

/** A request; it is answered unless its number is 0. */
struct ToStation {
    std::uint32_t number = 0;
    Request request;
};

// ---- From the station

enum class Reason : std::uint8_t {
    refused,     /**< by the applet */
    denied,      /**< the station does not let clients set */
    busy,        /**< a command runs */
    unavailable, /**< the station cannot do it */
    invalid      /**< the request makes no sense */
};
struct Refusal {
    Reason reason = Reason::unavailable;
    std::int32_t code = 0; /**< of the applet, FG_ERR_... */
    std::string text;
};
struct Done {};
/** A part of the parameters, and all events. */
struct Description {
    std::uint32_t count = 0; /**< of all parameters */
    std::vector<applet_host::Parameter> parameters;
    std::vector<applet_host::EventName> events;
};
struct Time {
    std::uint64_t tick = 0;
};
struct Started {
    std::uint64_t picture = 0; /**< number of the station's last picture */
};
/** A picture; its memory comes with the message. */
struct Picture {
    std::uint64_t number = 0;    /**< of the station's pictures */
    std::uint64_t firstLine = 0; /**< tick at which its transfer started */
    std::uint64_t lostBefore =
        0;                  /**< images since the previous picture that did not fit in the board's buffer */
    std::uint64_t size = 0; /**< in bytes */
    std::uint32_t width = 0, lines = 0;
    std::uint32_t bits = 0; /**< of a component */
};
struct Event {
    std::uint64_t mask = 0;
    std::uint64_t tick = 0;
};
struct Events {
    std::vector<Event> events; /**< in the order of time */
};
using Answer = std::variant<Refusal, Done, Description, applet_host::Value, applet_host::ParameterState, Time,
                            Started, Picture, Events>;

/** An answer to the request with that number; 0: unasked. */
struct ToClient {
    std::uint32_t number = 0;
    Answer answer;
};

/** What came is not a message. */
struct Malformed : std::runtime_error {
    using std::runtime_error::runtime_error;
};

using Bytes = std::vector<std::uint8_t>;

Bytes encoded(const ToStation& message);
Bytes encoded(const ToClient& message);
/** How many bytes a parameter takes in a Description. */
std::size_t sizeOf(const applet_host::Parameter& parameter);
/** The sender is not trusted: throw Malformed for anything but a whole message. */
ToStation requestFrom(std::span<const std::uint8_t> bytes);
ToClient answerFrom(std::span<const std::uint8_t> bytes);

} // namespace station_channel

#endif
