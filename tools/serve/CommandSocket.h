/** A station's socket: executes command lines of clients one at a time. */
#ifndef SERVE_COMMANDSOCKET_H
#define SERVE_COMMANDSOCKET_H

#include "applet_tools/base/messages.h"
#include "serve/ClientMessage.h"
#include "serve/StationLocation.h"

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

/** The result of a command. */
struct CommandEnd {
    int exitCode = 0;
    bool isOver = false; /**< the line was "exit" */
};

/**
 * Listens from the constructor to the destructor, on a thread of its own. That thread also answers requests
 * for the status and the log and requests to stop. Commands wait for the thread that created the object, which
 * takes them with begin(), one at a time, and answers them with end(). Accepts only processes of the same
 * user, or of root.
 */
class CommandSocket {
public:
    /** `description` is added to each status. Throws Failure if a station of that name is running or the
     *  socket cannot be made. */
    CommandSocket(const StationLocation& location, nlohmann::json description);
    ~CommandSocket();
    CommandSocket(const CommandSocket&) = delete;
    CommandSocket& operator=(const CommandSocket&) = delete;

    /** Readable while a command waits or a client has asked the station to stop. */
    int readable() const { return m_wake.number(); }
    bool isStopAsked() const;

    /** Returns the command that has waited longest of those for which `isWanted` is true; empty if there is none.
     *  Until its end, an interrupt request or a disconnect of its client sends SIGINT to this thread. */
    std::optional<ClientCommand> begin(const std::function<bool(const ClientCommand&)>& isWanted);
    /** Answers the last command from begin() that has not ended. Returns true if its client has interrupted it: then
     *  SIGINT was for the command and not for the station. */
    bool end(const CommandEnd& end);

    /** Makes the descriptor readable. Any thread may call it. */
    void wake() const;
    /** The text of the running command; empty if there is none. */
    std::string runningCommand() const;
    /** From now on, requests for the status and the address are answered. The addresses of the page, with and without
     *  the token, are empty if there is none. */
    void setReady(const std::string& address, const std::string& addressWithToken);
    /** Adds a line to the log for work that was not a command, such as a request by HTTP. */
    void addToLog(const std::string& text, int exitCode, double seconds);

private:
    using Clock = std::chrono::system_clock;

    /** A connected client. */
    struct Connection {
        explicit Connection(applet_tools::Descriptor descriptor);

        applet_tools::Descriptor socket;
        applet_tools::MessageReader reader;
        std::int64_t process;
    };
    /** A command from its arrival to its end. */
    struct Task {
        std::shared_ptr<Connection> client;
        ClientCommand command;
        std::string text; /**< for the log */
        Clock::time_point begin{};
        bool isInterrupted = false;
    };

    void listen();
    void accept();
    /** False if the connection must be closed. */
    bool serveClient(const std::shared_ptr<Connection>& client);
    bool answer(const std::shared_ptr<Connection>& client, const nlohmann::json& message);
    void enqueue(const std::shared_ptr<Connection>& client, const nlohmann::json& message);
    void interrupt(const std::shared_ptr<Connection>& client);
    nlohmann::json status() const;
    /** Throws Failure before setReady(). */
    void requireReady() const;
    void appendToLog(nlohmann::json entry);

    /** For the listening thread only. Closed after the lock file is released, so that a client that waits for the
     *  end of the station can start the next one. */
    std::vector<std::shared_ptr<Connection>> m_clients;
    const StationLocation m_location;
    const nlohmann::json m_description;
    const applet_tools::Descriptor m_lock;
    const applet_tools::Descriptor m_socket;
    const applet_tools::Descriptor m_wake;   // wakes the command thread
    const applet_tools::Descriptor m_ending; // wakes the listening thread
    const pthread_t m_commandThread = pthread_self();
    const Clock::time_point m_start = Clock::now();

    mutable std::mutex m_mutex; // guards the members below
    std::deque<Task> m_waiting;
    std::vector<Task> m_running; // nested commands at the end
    std::deque<nlohmann::json> m_log;
    std::uint64_t m_count = 0;
    bool m_isReady = false;
    nlohmann::json m_address;          // without the token; null without HTTP
    nlohmann::json m_addressWithToken; // the same
    bool m_isStopAsked = false;

    std::thread m_thread; // last, as it uses the other members
};

} // namespace serve

#endif
