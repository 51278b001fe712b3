#include "serve/channel/ChannelServer.h"

#include "applet_tools/base/block_signals.h"
#include "serve/local_socket.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

namespace serve {
namespace {

constexpr std::size_t mostConnections = 2 * ChannelClient::mostClients; // some wait for a slot
constexpr int shortPeriod = 10, longPeriod = 500;                       // milliseconds

} // namespace

ChannelServer::ChannelServer(const StationLocation& location, LiveStation& station)
    : m_station(station)
    , m_path(location.channel)
    , m_socket(listenAt(m_path, SOCK_SEQPACKET))
    , m_ending(wakingDescriptor()) {
    m_station.onEvents.emplace_back([this](const LiveStation::EventTicks& taken) { give(taken); });
    m_thread = std::thread([this] { listen(); });
}

ChannelServer::~ChannelServer() {
    m_station.close(); // clients may wait for the command thread, which is this one
    eventfd_write(m_ending.number(), 1);
    m_thread.join();
    unlink(m_path.c_str());
}

void ChannelServer::listen() {
    applet_tools::blockSignals();
    for (;;) {
        const bool wantsEvents = wantedEvents() != 0, full = isFull(); // then clients wait until one leaves
        pollfd polled[] = {{m_ending.number(), POLLIN, 0}, {m_socket.number(), short(full ? 0 : POLLIN), 0}};
        if (poll(polled, std::size(polled), wantsEvents || full ? shortPeriod : longPeriod) < 0) continue;
        if (polled[0].revents != 0) return;
        if (polled[1].revents != 0) accept();
        std::vector<std::unique_ptr<ChannelClient>> over;
        {
            const std::lock_guard guard(m_mutex);
            const auto first = std::partition(m_clients.begin(), m_clients.end(),
                                              [](const auto& client) { return !client->isOver(); });
            std::move(first, m_clients.end(), std::back_inserter(over));
            m_clients.erase(first, m_clients.end());
        }
        if (wantsEvents && !m_isAskedFor.exchange(true))
            m_station.commands.post(Work::reads, [this] {
                m_isAskedFor = false;
                m_station.takeEvents();
            });
    }
}

void ChannelServer::accept() {
    applet_tools::Descriptor socket(accept4(m_socket.number(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!socket || allowedPeer(socket.number()) < 0) return;
    const std::lock_guard guard(m_mutex);
    m_clients.push_back(std::make_unique<ChannelClient>(m_station, m_slots, std::move(socket)));
}

bool ChannelServer::isFull() {
    const std::lock_guard guard(m_mutex);
    return m_clients.size() >= mostConnections;
}

std::uint64_t ChannelServer::wantedEvents() {
    const std::lock_guard guard(m_mutex);
    std::uint64_t wanted = 0;
    for (const auto& client : m_clients)
        wanted |= client->wantedEvents();
    return wanted;
}

void ChannelServer::give(const LiveStation::EventTicks& taken) {
    std::vector<station_channel::Event> events;
    for (const auto& [name, ticks] : taken) {
        if (!m_masks.contains(name))
            m_masks[name] = m_station.instance().applet().Fg_getEventMask(m_station.instance().fg(), name);
        for (const std::uint64_t tick : ticks)
            events.push_back({m_masks[name], tick});
    }
    std::ranges::stable_sort(events, {}, &station_channel::Event::tick);
    const std::lock_guard guard(m_mutex);
    for (const auto& client : m_clients) {
        std::vector<station_channel::Event> wanted;
        std::ranges::copy_if(events, std::back_inserter(wanted), [&client](const auto& event) {
            return (event.mask & client->wantedEvents()) != 0;
        });
        client->give(wanted);
    }
}

} // namespace serve
