/** The socket of a station: command lines of clients, one after the other. */
#ifndef SERVE_COMMANDSOCKET_H
#define SERVE_COMMANDSOCKET_H

#include "applet_tools/base/messages.h"
#include "serve/ClientMessage.h"
#include "serve/StationPlace.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include <pthread.h>

namespace serve {

/** How a command has ended. */
struct CommandEnd {
    int exitCode = 0;
    bool isOver = false; /**< the line was "exit" */
};

/**
 * Listens from the constructor to the destructor, on a thread of its own, which also answers what concerns the station
 * itself: its status, its log, a request to stop. The commands wait for the thread that made the object: it takes them by
 * begin(), one at a time, and answers them by end(). Only processes of the same user, or of root, are listened to.
 */
class CommandSocket {
public:
    /** `description` is added to each status. Throws Failure when a station of that name runs already or the socket cannot
     *  be made. */
    CommandSocket(const StationPlace& place, nlohmann::json description);
    ~CommandSocket();
    CommandSocket(const CommandSocket&) = delete;
    CommandSocket& operator=(const CommandSocket&) = delete;

    /** Readable while a command waits or a client has asked the station to stop. */
    int readable() const { return m_wake.number(); }
    bool isStopAsked() const;

    /** The command that has waited longest, if `isWanted` says so of it; none if there is no such one. From now to its end a
     *  request of its client to interrupt it, or the client's end, sends SIGINT to this thread. */
    std::optional<ClientCommand> begin(const std::function<bool(const ClientCommand&)>& isWanted);
    /** Answers the command that begin() gave last and that has not ended. True when its client has interrupted it, so that
     *  SIGINT was not meant for the station. */
    bool end(const CommandEnd& end);

private:
    using Clock = std::chrono::system_clock;

    /** A client, as long as it stays connected. */
    struct Connection {
        explicit Connection(applet_tools::Descriptor descriptor);

        applet_tools::Descriptor socket;
        applet_tools::MessageReader reader;
        std::int64_t process;
    };
    /** A command, from its arrival on. */
    struct Task {
        std::shared_ptr<Connection> client;
        ClientCommand command;
        std::string text; /**< for the log */
        Clock::time_point begin{};
        bool isInterrupted = false;
    };

    void listen();
    void accept();
    /** False when the connection is of no use any more. */
    bool serveClient(const std::shared_ptr<Connection>& client);
    bool answer(const std::shared_ptr<Connection>& client, const nlohmann::json& message);
    void enqueue(const std::shared_ptr<Connection>& client, const nlohmann::json& message);
    void interrupt(const std::shared_ptr<Connection>& client);
    nlohmann::json status() const;
    void wake() const;

    /** Of the listening thread alone. Closed after the lock is free, so that a client that waits for the end of the station
     *  can start the next one. */
    std::vector<std::shared_ptr<Connection>> m_clients;
    const StationPlace m_place;
    const nlohmann::json m_description;
    const applet_tools::Descriptor m_lock;
    const applet_tools::Descriptor m_socket;
    const applet_tools::Descriptor m_wake;   // for the thread of the commands
    const applet_tools::Descriptor m_ending; // for the thread that listens
    const pthread_t m_commandThread = pthread_self();
    const Clock::time_point m_start = Clock::now();

    mutable std::mutex m_mutex; // of what follows
    std::deque<Task> m_waiting;
    std::vector<Task> m_running; // one begun within another at the end
    std::deque<nlohmann::json> m_log;
    std::uint64_t m_count = 0;
    bool m_isStopAsked = false;

    std::thread m_thread; // after all that it uses
};

} // namespace serve

#endif
