#include "device/served/StationLink.h"

#include "applet_tools/base/errors.h"
#include "base/Error.h"
#include "device/DeviceStation.h"
#include "device/thread.h"
#include "serve/StationLocation.h"
#include "serve/local_socket.h"

#include <sys/socket.h>

#include <chrono>

namespace producer {
namespace {

using namespace station_channel;

constexpr std::uint32_t mostPixels = 1U << 20U, mostLines = 1U << 24U; // so that sizes do not overflow
constexpr std::chrono::seconds longestAnswer(10); // the station itself gives up a request after two

Descriptor connected(const std::string& name) {
    std::string reason = "no station of that name runs: start it with 'appletctl serve " + name + "'";
    try {
        if (Descriptor socket = serve::connectAt(serve::locationOf(name).channel, SOCK_SEQPACKET))
            return socket;
    } catch (const std::exception& error) { // not a name of a station, or no descriptors left
        reason = error.what();
    }
    throw Error(GC_ERR_IO, "the station '" + name + "' cannot be reached: " + reason);
}

} // namespace

StationLink::StationLink(const std::string& name)
    : m_name(name)
    , m_socket(connected(name))
    , m_thread(startThread([this] { work(); })) {
    try {
        ask<Done>(Hello());
    } catch (...) {
        finish();
        throw;
    }
}

StationLink::~StationLink() { finish(); }

void StationLink::finish() {
    m_socket.close();
    if (m_thread.joinable()) m_thread.join();
}

std::optional<std::string> StationLink::listen(LinkListener* listener) {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_isCalling; });
    m_listener = listener;
    return m_loss;
}

bool StationLink::send(Request request) {
    return m_socket.send(encoded(ToStation{0, std::move(request)}), ChannelSocket::Wait::forRoom);
}

Answer StationLink::answerTo(Request request) {
    const std::lock_guard asking(m_asking);
    std::unique_lock lock(m_mutex);
    m_answer.reset();
    if (++m_number == 0) ++m_number;
    const Bytes message = encoded(ToStation{m_number, std::move(request)});
    lock.unlock();
    const bool isSent = m_socket.send(message, ChannelSocket::Wait::forRoom);
    lock.lock();
    if (!isSent && !m_loss) throw Error(GC_ERR_IO, "the station '" + m_name + "' does not read its messages");
    m_changed.wait_for(lock, longestAnswer, [this] { return m_answer || m_loss; });
    if (m_answer) return *std::exchange(m_answer, std::nullopt);
    throw Error(GC_ERR_IO, m_loss ? *m_loss
                                  : "the station '" + m_name + "' did not answer within " +
                                        std::to_string(longestAnswer.count()) + " seconds");
}

void StationLink::refuse(const Answer& answer) const {
    const auto* const refused = std::get_if<Refusal>(&answer);
    if (refused == nullptr)
        throw Error(GC_ERR_IO, "the station '" + m_name + "' sent the wrong kind of answer");
    switch (refused->reason) {
    case Reason::refused:
        throw refusal(refused->code, refused->text);
    case Reason::denied:
        throw Error(GC_ERR_ACCESS_DENIED, refused->text);
    case Reason::busy:
        throw Error(GC_ERR_BUSY, refused->text);
    default:
        throw Error(GC_ERR_IO, refused->text);
    }
}

void StationLink::work() {
    std::string reason = "the station '" + m_name + "' has ended";
    try {
        while (std::optional<Packet> packet = m_socket.receive())
            handle(std::move(*packet));
    } catch (const std::bad_alloc&) {
        reason = "there is not enough memory for the messages of the station '" + m_name + "'";
    } catch (const Malformed& error) {
        reason = "the station '" + m_name + "' sends a message that cannot be read: " + error.what();
    }
    m_socket.close();
    lose(reason);
}

template <typename Function> void StationLink::withListener(Function function) {
    std::unique_lock lock(m_mutex);
    if (m_listener == nullptr) return;
    m_isCalling = true;
    lock.unlock();
    unlessOutOfMemory([&] { function(*m_listener); });
    lock.lock();
    m_isCalling = false;
    m_changed.notify_all();
}

void StationLink::handle(Packet packet) {
    ToClient message = answerFrom(packet.bytes);
    if (const auto* picture = std::get_if<station_channel::Picture>(&message.answer)) {
        if (picture->width > mostPixels || picture->lines > mostLines)
            throw Malformed("a picture is too large");
        const SharedMemory memory(std::move(packet.descriptor), picture->size);
        withListener([&](LinkListener& listener) { listener.show(*picture, memory); });
    } else if (const auto* events = std::get_if<Events>(&message.answer)) {
        withListener([&](LinkListener& listener) {
            for (const Event& event : events->events)
                listener.happen(event);
        });
    } else {
        const std::lock_guard lock(m_mutex);
        if (message.number != m_number) return; // too late: the request has timed out
        m_answer = std::move(message.answer);
        m_changed.notify_all();
    }
}

void StationLink::lose(const std::string& reason) {
    {
        const std::lock_guard lock(m_mutex);
        m_loss = reason;
        m_changed.notify_all();
    }
    withListener([&](LinkListener& listener) { listener.lose(reason); });
}

} // namespace producer
