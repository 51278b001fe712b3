#include "applet_tools/scratch/ScratchBoard.h"

#include "applet_tools/applet/Effort.h"
#include "applet_tools/base/Stopwatch.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/ScratchSession.h"

#include <poll.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <utility>

namespace applet_tools {
namespace {

const JobRow& rowOf(std::span<const JobRow> jobs, const std::string& name) {
    for (const JobRow& row : jobs)
        if (name == row.name) return row;
    throw std::logic_error("no job '" + name + "'");
}

/** The child's side. */
class Server {
public:
    Server(int socket, const BoardOptions& options, std::span<const JobRow> jobs)
        : m_socket(socket)
        , m_options(options)
        , m_jobs(jobs) {}

    json answer(const json& message) {
        if (const auto state = message.find("state"); state != message.end()) {
            if (!m_session) begin();
            m_session->startFrom(*state);
            m_isTouched = false;
            return {{"assumed", m_session->assumed()}, {"measurements", m_session->assumedMeasurements()}};
        }
        if (m_isTouched) m_session->rewind();
        m_isTouched = true;
        // File arguments are relative to the parent's folder, which may have changed.
        std::error_code ignored;
        std::filesystem::current_path(message.at("folder").get<std::string>(), ignored);
        effort() = {};
        return rowOf(m_jobs, message.at("job").get<std::string>())
            .run(m_session.value(), message.at("arguments"));
    }

private:
    void begin() {
        m_session.emplace(m_options);
        m_session->onProgress = [this](std::size_t done, std::size_t total) {
            using namespace std::chrono_literals;
            const auto now = std::chrono::steady_clock::now();
            if (now - m_lastProgress < 100ms) return;
            m_lastProgress = now;
            sendMessage(m_socket, {{"progress", numberText(done) + " of " + numberText(total)}});
        };
    }

    int m_socket;
    const BoardOptions& m_options;
    std::span<const JobRow> m_jobs;
    std::optional<ScratchSession> m_session;
    std::chrono::steady_clock::time_point m_lastProgress;
    bool m_isTouched = false; // no longer in its start state
};

/** Answers messages until the parent has ended. */
void serve(int socket, const BoardOptions& options, std::span<const JobRow> jobs) {
    for (const int signal : {SIGINT, SIGHUP}) // of the terminal, which the parent handles
        std::signal(signal, SIG_IGN);
    unsetenv("VBOARD_LOG_LEVEL"); // logging is for the live board
    Server server(socket, options, jobs);
    MessageReader reader(socket);
    while (const std::optional<json> message = reader.wait()) {
        json answer;
        try {
            answer["result"] = server.answer(*message);
            answer["effort"] = {
                {"sets", effort().sets}, {"loads", effort().loads}, {"bringUps", effort().bringUps}};
        } catch (const UsageError& error) {
            answer = {{"usage", error.what()}};
        } catch (const Unavailable& error) {
            answer = {{"unavailable", error.what()}};
        } catch (const applet_host::HostError& error) {
            answer = {{"unavailable", error.what()}};
        } catch (const AssumptionRefused& error) {
            answer = {{"failure", error.what()}, {"code", error.code}, {"members", error.members}};
        } catch (const std::exception& error) {
            answer = {{"failure", error.what()}};
        }
        if (!sendMessage(socket, answer)) break;
    }
}

/** The main function of a copy. An escaping exception would continue as a second parent. */
[[noreturn]] void live(int socket, pid_t parent, const BoardOptions& options, std::span<const JobRow> jobs) {
    try {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent) _exit(0); // the parent ended before prctl
        serve(socket, options, jobs);
    } catch (const std::exception&) { // no memory for a message; the parent sees that the child ended
        _exit(EXIT_FAILURE);
    }
    _exit(EXIT_SUCCESS);
}

[[noreturn]] void failToStart(int error) {
    throw Unavailable(std::string("no scratch board can be created: ") + std::strerror(error));
}

/** What posix_spawn does between fork and exec. */
class SpawnActions {
public:
    SpawnActions() { posix_spawn_file_actions_init(&m_actions); }
    ~SpawnActions() { posix_spawn_file_actions_destroy(&m_actions); }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;
    posix_spawn_file_actions_t* get() { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions{};
};

pid_t startProgram(const BoardOptions& options, int socket) {
    SpawnActions actions;
    posix_spawn_file_actions_adddup2(actions.get(), socket, scratchSocket);
    posix_spawn_file_actions_addclosefrom_np(actions.get(), scratchSocket + 1);
    std::string name = options.scratchProgram, applet = options.applet;
    std::string folder = applet_host::libraryFolder().string();
    char* const arguments[] = {name.data(), folder.data(), applet.data(), nullptr};
    pid_t child = -1;
    const int error = posix_spawn(&child, name.c_str(), actions.get(), nullptr, arguments, environ);
    if (error != 0)
        throw Unavailable("no scratch board can be created: the program " + shownFile(name) +
                          " cannot be started: " + std::strerror(error));
    return child;
}

} // namespace

int runScratchBoard(const std::string& folder, const std::string& applet, std::span<const JobRow> jobs) {
    try {
        if (!folder.empty()) applet_host::chooseFolder(folder);
        BoardOptions options;
        options.applet = applet;
        serve(scratchSocket, options, jobs);
    } catch (const std::exception&) { // the other side sees that the program ended
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

ScratchBoard::ScratchBoard(const BoardOptions& options, std::span<const JobRow> jobs, ObserveWork observe)
    : m_options(options)
    , m_jobs(jobs)
    , m_observe(std::move(observe)) {
    if (m_options.scratchProgram.empty()) start();
}

void ScratchBoard::start() {
    int sockets[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0) failToStart(errno);
    m_socket = Descriptor(sockets[0]);
    const Descriptor other(sockets[1]);
    if (!m_options.scratchProgram.empty()) {
        m_child = startProgram(m_options, sockets[1]);
    } else {
        const pid_t parent = getpid();
        m_child = fork();
        if (m_child == 0) {
            close(sockets[0]);
            live(sockets[1], parent, m_options, m_jobs);
        }
        if (m_child < 0) failToStart(errno);
    }
    m_reader.emplace(sockets[0]);
}

ScratchBoard::~ScratchBoard() { end(); }

void ScratchBoard::end() {
    m_reader.reset();
    m_socket = Descriptor(); // closing it ends the child
    if (m_child > 0) waitpid(std::exchange(m_child, -1), nullptr, 0);
}

json ScratchBoard::startFrom(const json& state) {
    const Stopwatch watch;
    json differences = request({{"state", state}})["result"];
    const auto assumed = differences["assumed"].get<Words>();
    const bool isLive = !state.at("values").empty();
    m_notes.push_back(std::string("scratch board: brought to the ") + (isLive ? "live state" : "defaults") +
                      " in " + watch.text() + (assumed.empty() ? "" : "; assumed: " + join(assumed, ", ")));
    return differences;
}

json ScratchBoard::ask(const std::string& job, const json& arguments) {
    const Stopwatch watch;
    std::error_code ignored;
    json answer = request({{"job", job},
                           {"arguments", arguments},
                           {"folder", std::filesystem::current_path(ignored).string()}});
    const json& took = answer["effort"];
    std::string note = std::string("scratch board: asked ") + rowOf(m_jobs, job).words;
    const auto add = [&](const char* member, const char* words) {
        if (const auto count = took[member].get<std::size_t>(); count > 0)
            note += ", " + numberText(count) + words;
    };
    add("sets", " values tried");
    add("loads", " files loaded");
    add("bringUps", " fresh starts");
    m_notes.push_back(note + ", " + watch.text());
    return std::move(answer["result"]);
}

Words ScratchBoard::takeNotes() { return std::exchange(m_notes, {}); }

namespace {

/** True when there is something to read; false on a timeout. */
bool isReadable(int socket, std::chrono::milliseconds limit) {
    pollfd one{.fd = socket, .events = POLLIN, .revents = 0};
    return poll(&one, 1, static_cast<int>(limit.count())) > 0;
}

/** The final answer, empty if the child has ended; messages before it report progress. */
std::optional<json> receiveAnswer(int socket, MessageReader& reader, WorkObserver* observer) {
    using namespace std::chrono_literals;
    const auto limit = [&] { return observer != nullptr ? observer->interval() : -1ms; };
    for (;;) {
        std::optional<json> answer = reader.next();
        if (answer && !answer->contains("progress")) return answer;
        if (answer && observer != nullptr) {
            observer->setDetail((*answer)["progress"].get<std::string>());
            observer->update();
        }
        if (answer) continue;
        while (!isReadable(socket, limit()))
            if (observer != nullptr) observer->update();
        if (!reader.readArrived()) return std::nullopt;
    }
}

} // namespace

json ScratchBoard::request(const json& message) {
    if (!m_reader) start();
    const std::unique_ptr<WorkObserver> observer = m_observe ? m_observe() : nullptr;
    std::optional<json> answer;
    if (sendMessage(m_socket.number(), message))
        answer = receiveAnswer(m_socket.number(), *m_reader, observer.get());
    if (!answer) {
        if (!m_options.scratchProgram.empty()) end(); // the next request starts another one
        throw Failure("the scratch board has ended unexpectedly");
    }
    if (answer->contains("usage")) throw UsageError((*answer)["usage"].get<std::string>());
    if (answer->contains("unavailable")) throw Unavailable((*answer)["unavailable"].get<std::string>());
    if (answer->contains("failure")) {
        const std::string words = "on the scratch board: " + (*answer)["failure"].get<std::string>();
        if (answer->contains("code"))
            throw AssumptionRefused(words, (*answer)["code"].get<int>(), (*answer)["members"]);
        throw Failure(words);
    }
    return *std::move(answer);
}

} // namespace applet_tools
