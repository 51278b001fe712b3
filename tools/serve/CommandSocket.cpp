#include "serve/CommandSocket.h"

#include "applet_tools/base/block_signals.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "serve/local_socket.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>

namespace serve {
namespace {

using applet_tools::Descriptor;
using applet_tools::Failure;
using nlohmann::json;

constexpr std::size_t mostClients = 64;
constexpr std::size_t mostBytes = 4U << 20U; // a command line is at most half as long
constexpr std::size_t mostLogged = 1000;

/** A command line without the option that selects this station. */
applet_tools::Words withoutStation(applet_tools::Words words) {
    const auto end = std::ranges::find(words, "--");
    const auto found = std::find_if(words.begin(), end, [](const std::string& word) {
        return word == "--station" || word.starts_with("--station=");
    });
    if (found != end) words.erase(found, *found == "--station" && found + 1 != end ? found + 2 : found + 1);
    return words;
}

double secondsBetween(std::chrono::system_clock::time_point from, std::chrono::system_clock::time_point to) {
    return std::chrono::duration<double>(to - from).count();
}

} // namespace

CommandSocket::Connection::Connection(Descriptor descriptor)
    : socket(std::move(descriptor))
    , reader(socket.number(), mostBytes)
    , process(allowedPeer(socket.number())) {
    constexpr timeval limit{0, 200'000}; // a client that does not read its answers is disconnected
    setsockopt(socket.number(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
}

CommandSocket::CommandSocket(const StationLocation& location, json description)
    : m_location(location)
    , m_description(std::move(description))
    , m_lock(lockStation(location))
    , m_socket(listenAt(location.socket, SOCK_STREAM))
    , m_wake(wakingDescriptor())
    , m_ending(wakingDescriptor())
    , m_thread([this] { listen(); }) {}

CommandSocket::~CommandSocket() {
    eventfd_write(m_ending.number(), 1);
    m_thread.join();
    unlink(m_location.socket.c_str()); // the lock file is kept: another process might lock a removed one
}

bool CommandSocket::isStopAsked() const {
    const std::lock_guard guard(m_mutex);
    return m_isStopAsked;
}

std::optional<ClientCommand> CommandSocket::begin(const std::function<bool(const ClientCommand&)>& isWanted) {
    const std::lock_guard guard(m_mutex);
    if (m_waiting.empty()) {
        eventfd_t ignored = 0;
        eventfd_read(m_wake.number(), &ignored);
        return std::nullopt;
    }
    const auto found =
        std::ranges::find_if(m_waiting, [&](const Task& task) { return isWanted(task.command); });
    if (found == m_waiting.end()) return std::nullopt;
    m_running.push_back(std::move(*found));
    m_waiting.erase(found);
    m_running.back().begin = Clock::now();
    ++m_count;
    return std::move(m_running.back().command);
}

bool CommandSocket::end(const CommandEnd& end) {
    const std::lock_guard guard(m_mutex);
    const Task task = std::move(m_running.back());
    m_running.pop_back();
    const Clock::time_point now = Clock::now();
    appendToLog({{"time", std::chrono::duration<double>(task.begin.time_since_epoch()).count()},
                 {"process", task.client->process},
                 {"command", task.text},
                 {"exitCode", end.exitCode},
                 {"seconds", secondsBetween(task.begin, now)}});
    applet_tools::sendMessage(task.client->socket.number(), {{"exit", end.exitCode}, {"over", end.isOver}});
    if (!m_running.empty() && m_running.back().isInterrupted) raise(SIGINT); // deliver the postponed signal
    return task.isInterrupted;
}

void CommandSocket::appendToLog(json entry) {
    m_log.push_back(std::move(entry));
    if (m_log.size() > mostLogged) m_log.pop_front();
}

void CommandSocket::addToLog(const std::string& text, int exitCode, double seconds) {
    const double now = std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
    const std::lock_guard guard(m_mutex);
    ++m_count;
    appendToLog({{"time", now - seconds},
                 {"process", getpid()},
                 {"command", text},
                 {"exitCode", exitCode},
                 {"seconds", seconds}});
}

void CommandSocket::setReady(const std::string& address, const std::string& addressWithToken) {
    const std::lock_guard guard(m_mutex);
    m_isReady = true;
    if (address.empty()) return;
    m_address = address;
    m_addressWithToken = addressWithToken;
}

void CommandSocket::requireReady() const {
    const std::lock_guard guard(m_mutex);
    if (!m_isReady) throw Failure("the station '" + m_location.name + "' is starting");
}

std::string CommandSocket::runningCommand() const {
    const std::lock_guard guard(m_mutex);
    return m_running.empty() ? "" : m_running.back().text;
}

void CommandSocket::wake() const { eventfd_write(m_wake.number(), 1); }

void CommandSocket::listen() {
    applet_tools::blockSignals();
    for (;;) {
        std::vector<pollfd> polled = {{m_ending.number(), POLLIN, 0}, {m_socket.number(), POLLIN, 0}};
        for (const auto& client : m_clients)
            polled.push_back({client->socket.number(), POLLIN, 0});
        if (poll(polled.data(), polled.size(), -1) < 0) continue;
        if (polled[0].revents != 0) return;
        std::vector<std::shared_ptr<Connection>> gone;
        for (std::size_t i = 0; i < m_clients.size(); ++i)
            if (polled[i + 2].revents != 0 && !serveClient(m_clients[i])) gone.push_back(m_clients[i]);
        for (const auto& client : gone) {
            interrupt(client);
            std::erase(m_clients, client);
        }
        if (polled[1].revents != 0) accept();
    }
}

void CommandSocket::accept() {
    Descriptor socket(accept4(m_socket.number(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!socket) return;
    auto client = std::make_shared<Connection>(std::move(socket));
    if (client->process >= 0 && m_clients.size() < mostClients) m_clients.push_back(std::move(client));
}

bool CommandSocket::serveClient(const std::shared_ptr<Connection>& client) {
    try {
        const bool isOpen = client->reader.readArrived();
        while (const std::optional<json> message = client->reader.next())
            if (!answer(client, *message)) return false;
        return isOpen;
    } catch (const std::exception& error) { // an invalid message
        applet_tools::sendMessage(client->socket.number(), {{"refused", error.what()}});
        return false;
    }
}

bool CommandSocket::answer(const std::shared_ptr<Connection>& client, const json& message) {
    const int socket = client->socket.number();
    if (message.at("protocol") != protocolVersion)
        throw Failure(
            "the station is of another version of appletctl: stop it, and start it again with this one");
    const auto what = message.at("do").get<std::string>();
    if (what == "command" || what == "line") {
        enqueue(client, message);
        return true;
    }
    if (what == "interrupt") {
        interrupt(client);
        return true;
    }
    if (what == "status" || what == "address") requireReady();
    if (what == "status") return applet_tools::sendMessage(socket, status());
    if (what == "log") {
        const std::lock_guard guard(m_mutex);
        return applet_tools::sendMessage(socket, {{"log", m_log}});
    }
    if (what == "address") {
        const std::lock_guard guard(m_mutex);
        return applet_tools::sendMessage(socket, {{"address", m_addressWithToken}});
    }
    if (what != "stop") throw Failure("a station does not know the request '" + what + "'");
    {
        const std::lock_guard guard(m_mutex);
        m_isStopAsked = true;
        if (!m_running.empty()) {
            m_running.back().isInterrupted = true;
            pthread_kill(m_commandThread, SIGINT);
        }
        wake();
    }
    return applet_tools::sendMessage(socket, {{"stopping", true}});
}

void CommandSocket::enqueue(const std::shared_ptr<Connection>& client, const json& message) {
    ClientCommand command = commandFrom(message);
    command.files = client->reader.takeDescriptors();
    if (command.files.size() != clientFiles)
        throw Failure("a command needs its standard streams and its folder");
    std::string text = command.kind == ClientCommand::Kind::line
                           ? command.line
                           : applet_tools::joinWords(withoutStation(command.words));
    const std::lock_guard guard(m_mutex);
    m_waiting.push_back({client, std::move(command), std::move(text)});
    wake();
}

void CommandSocket::interrupt(const std::shared_ptr<Connection>& client) {
    const std::lock_guard guard(m_mutex);
    constexpr int interrupted = 130;
    std::erase_if(m_waiting, [&](const Task& task) {
        if (task.client != client) return false;
        applet_tools::sendMessage(client->socket.number(), {{"exit", interrupted}, {"over", false}});
        return true;
    });
    for (Task& task : m_running) {
        if (task.client != client || task.isInterrupted) continue;
        task.isInterrupted = true;
        if (&task == &m_running.back()) pthread_kill(m_commandThread, SIGINT);
    }
}

json CommandSocket::status() const {
    const std::lock_guard guard(m_mutex);
    json status = m_description;
    status.update({{"name", m_location.name},
                   {"process", getpid()},
                   {"seconds", secondsBetween(m_start, Clock::now())},
                   {"commands", m_count},
                   {"waiting", m_waiting.size()},
                   {"address", m_address},
                   {"command", m_running.empty() ? json() : json(m_running.back().text)}});
    return {{"status", status}};
}

} // namespace serve
