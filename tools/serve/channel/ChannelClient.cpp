#include "serve/channel/ChannelClient.h"

#include "applet_host/parameter_access.h"
#include "applet_tools/base/block_signals.h"
#include "applet_tools/base/errors.h"

#include <algorithm>
#include <chrono>
#include <iterator>

namespace serve {
namespace {

using namespace station_channel;
using applet_tools::Parameter;

constexpr int longestGreeting = 5000; // milliseconds until the first message
constexpr std::chrono::seconds longestWaitForSlot(4);
/** Limit of pictures that were sent and not yet received. */
constexpr std::uint64_t mostOnTheWay = 4;
/** Descriptions are added to a message until it has this many bytes. */
constexpr std::size_t mostDescribed = mostBytes / 2;
constexpr std::size_t mostEventsInMessage = 1000;

/** Throws UsageError if there is none that has a record. */
const Parameter& parameterOf(applet_tools::LiveSession& live, const std::string& name) {
    const auto& all = live.parameters().all();
    const auto found = std::ranges::find(all, name, &Parameter::name);
    if (found == all.end() || found->record == nullptr)
        throw applet_tools::UsageError("the applet has no parameter " + name);
    return *found;
}

std::string pathOf(const Parameter& parameter) {
    std::string path;
    for (const std::string& group : parameter.groups)
        path += (path.empty() ? "" : "\n") + group;
    return path;
}

} // namespace

ChannelClient::ChannelClient(LiveStation& station, std::counting_semaphore<>& slots,
                             applet_tools::Descriptor socket)
    : m_station(station)
    , m_slots(slots)
    , m_socket(std::move(socket))
    , m_thread([this] { work(); }) {}

ChannelClient::~ChannelClient() {
    m_socket.close();
    m_thread.join();
}

void ChannelClient::give(std::span<const Event> events) {
    while (!events.empty()) {
        const auto part = events.first(std::min(events.size(), mostEventsInMessage));
        m_socket.send(encoded(ToClient{0, Events{{part.begin(), part.end()}}}), ChannelSocket::Wait::never);
        events = events.subspan(part.size());
    }
}

bool ChannelClient::wantsPicture() const {
    const std::uint64_t received = m_received, sent = m_sent;
    return !m_isOver && sent - received < std::min<std::uint64_t>(m_room, mostOnTheWay);
}

void ChannelClient::take(const SharedPicture& picture) {
    const vboard_record& record = picture.record();
    const Picture notice{.number = static_cast<std::uint64_t>(picture.number()),
                         .firstLine = record.first_line,
                         .lostBefore = record.lost_before,
                         .size = record.size,
                         .width = record.width,
                         .lines = record.lines,
                         .bits = record.bits};
    ++m_sent; // before the client can confirm that it has received the picture
    if (!m_socket.send(encoded(ToClient{0, notice}), ChannelSocket::Wait::never, picture.descriptor()))
        --m_sent;
}

void ChannelClient::work() {
    applet_tools::blockSignals();
    try {
        bool isFirst = true;
        while (isFirst ? m_socket.waitReadable(longestGreeting) : true) {
            const std::optional<Packet> packet = m_socket.receive();
            if (!packet) break;
            const ToStation message = requestFrom(packet->bytes);
            if (isFirst && !std::holds_alternative<Hello>(message.request)) break;
            const Answer answer = answerTo(message.request);
            if (message.number != 0 &&
                !m_socket.send(encoded(ToClient{message.number, answer}), ChannelSocket::Wait::forRoom))
                break;
            if (isFirst && std::holds_alternative<Refusal>(answer)) break;
            isFirst = false;
        }
    } catch (const std::exception&) { // an invalid message, or no memory: the connection ends
    }
    if (m_hasJoined) m_station.pictures->leave(*this);
    if (m_hasSlot) m_slots.release();
    m_isOver = true;
    m_socket.close();
}

Answer ChannelClient::answerTo(const Request& request) {
    try {
        return std::visit([this](const auto& one) { return execute(one); }, request);
    } catch (const applet_host::Refused& error) {
        return Refusal{Reason::refused, error.code(), error.what()};
    } catch (const Busy& error) {
        return Refusal{Reason::busy, 0, error.what()};
    } catch (const applet_tools::UsageError& error) {
        return Refusal{Reason::invalid, 0, error.what()};
    } catch (const std::exception& error) {
        return Refusal{Reason::unavailable, 0, error.what()};
    }
}

Answer ChannelClient::execute(const Hello& hello) {
    if (hello.version != protocolVersion)
        return Refusal{
            Reason::invalid, 0,
            "the station is of another version: start it again with the appletctl of this producer"};
    m_hasSlot = m_hasSlot || m_slots.try_acquire_for(longestWaitForSlot);
    if (m_hasSlot) return Done();
    return Refusal{Reason::busy, 0,
                   "the station serves " + std::to_string(mostClients) +
                       " clients already, which is its limit: close one of them"};
}

Answer ChannelClient::execute(const Describe& describe) {
    return m_station.commands.run(Work::reads, [&] {
        Description answer;
        std::size_t size = 0;
        for (const Parameter& parameter : m_station.access.live->parameters().all()) {
            if (parameter.record == nullptr || answer.count++ < describe.first || size >= mostDescribed)
                continue;
            answer.parameters.push_back(applet_host::describe(*parameter.record, pathOf(parameter)));
            size += sizeOf(answer.parameters.back());
        }
        auto& instance = m_station.instance();
        answer.events = applet_host::eventNames(instance.applet(), instance.fg());
        return answer;
    });
}

Answer ChannelClient::execute(const ReadValue& read) {
    return m_station.commands.run(Work::reads, [&] {
        auto& instance = m_station.instance();
        const Parameter& parameter = parameterOf(*m_station.access.live, read.name);
        return applet_host::readValue(instance.applet(), instance.fg(), *parameter.record);
    });
}

Answer ChannelClient::execute(const ReadState& read) {
    return m_station.commands.run(Work::reads, [&] {
        return applet_host::stateOf(*parameterOf(*m_station.access.live, read.name).record);
    });
}

Answer ChannelClient::execute(const WriteValue& write) {
    const std::string refused = write.name + " = " + applet_host::textOf(write.value) + " was refused: ";
    if (!m_station.access.maySet)
        return Refusal{Reason::denied, 0,
                       refused + "this station is read-only: start it with --allow-set to change settings"};
    m_station.commands.run(Work::changes, [&] {
        const Parameter& parameter = parameterOf(*m_station.access.live, write.name);
        if (parameter.writesFile())
            throw applet_tools::UsageError(refused + "a set writes a file: use 'appletctl set'");
        auto& instance = m_station.instance();
        m_station.access.change("set " + write.name + '=' + applet_host::textOf(write.value), [&] {
            applet_host::writeValue(instance.applet(), instance.fg(), *parameter.record, write.value);
        });
        m_station.noteChanges();
    });
    return Done();
}

Answer ChannelClient::execute(const ReadTime&) {
    if (!m_station.isVirtual())
        throw applet_tools::Failure("this station has no virtual board, which has a time");
    return m_station.commands.run(Work::reads, [&] {
        auto& instance = m_station.instance();
        return Time{instance.board().now(instance.device())};
    });
}

Answer ChannelClient::execute(const Start&) {
    if (!m_station.pictures)
        throw applet_tools::Failure("this station has no virtual board, which makes the pictures");
    execute(Stop());
    m_sent = m_received = m_room = 0;
    const std::int64_t last =
        m_station.commands.run(Work::changes, [this] { return m_station.pictures->join(*this); });
    m_hasJoined = true;
    return Started{static_cast<std::uint64_t>(last)};
}

Answer ChannelClient::execute(const Stop&) {
    if (m_hasJoined) m_station.pictures->leave(*this);
    m_hasJoined = false;
    return Done();
}

Answer ChannelClient::execute(const Accept& accept) {
    m_received = std::min<std::uint64_t>(accept.received, m_sent);
    m_room = accept.room;
    if (m_hasJoined) m_station.pictures->wake();
    return Done();
}

Answer ChannelClient::execute(const WantEvents& want) {
    m_station.commands.run(Work::reads, [&] {
        m_station.takeEvents(); // those that happened before
        m_wantedEvents = want.mask;
    });
    return Done();
}

} // namespace serve
