#include "appletctl/scratch/ScratchBoard.h"

#include "appletctl/base/errors.h"
#include "appletctl/scratch/ScratchSession.h"

#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <vector>

namespace appletctl {
namespace {

using Bytes = std::vector<std::uint8_t>;

/** Moves all bytes by `move`, which is read or write; false at the end of the other side. */
template <typename Byte, typename Move> bool moveAll(int socket, Byte* bytes, std::size_t count, Move move) {
    while (count > 0) {
        const ssize_t moved = move(socket, bytes, count);
        if (moved < 0 && errno == EINTR) continue;
        if (moved <= 0) return false;
        bytes += moved;
        count -= static_cast<std::size_t>(moved);
    }
    return true;
}

bool send(int socket, const json& message) {
    const auto write = [](int to, const std::uint8_t* bytes, std::size_t count) {
        return ::send(to, bytes, count, MSG_NOSIGNAL);
    };
    const Bytes bytes = json::to_cbor(message);
    const std::uint64_t size = bytes.size();
    Bytes head(sizeof size);
    std::memcpy(head.data(), &size, sizeof size);
    return moveAll(socket, head.data(), head.size(), write) &&
           moveAll(socket, bytes.data(), bytes.size(), write);
}

bool receive(int socket, json& message) {
    std::uint64_t size = 0;
    if (!moveAll(socket, reinterpret_cast<std::uint8_t*>(&size), sizeof size, ::read)) return false;
    Bytes bytes(size);
    if (!moveAll(socket, bytes.data(), bytes.size(), ::read)) return false;
    message = json::from_cbor(bytes);
    return true;
}

/** The child's side. */
class Server {
public:
    Server(const Options& options, std::span<const JobRow> jobs) : m_options(options), m_jobs(jobs) {}

    json answer(const json& message) {
        if (const auto seed = message.find("seed"); seed != message.end()) {
            if (!m_session) m_session.emplace(m_options);
            m_session->seed(*seed);
            m_isTouched = false;
            return m_session->assumed();
        }
        if (m_isTouched) m_session->rewind();
        m_isTouched = true;
        return findJob(message.at("job").get<std::string>())(m_session.value(), message.at("arguments"));
    }

private:
    Job findJob(const std::string& name) const {
        for (const JobRow& row : m_jobs)
            if (name == row.name) return row.run;
        throw std::logic_error("no job '" + name + "'");
    }

    const Options& m_options;
    std::span<const JobRow> m_jobs;
    std::optional<ScratchSession> m_session;
    bool m_isTouched = false; // not in the state of the seed
};

/** Answers messages until the parent is gone. */
[[noreturn]] void serve(int socket, const Options& options, std::span<const JobRow> jobs) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::signal(SIGINT, SIG_IGN); // Ctrl-C is the parent's matter
    Server server(options, jobs);
    for (json message; receive(socket, message);) {
        json answer;
        try {
            answer["result"] = server.answer(message);
        } catch (const UsageError& error) {
            answer = {{"usage", error.what()}};
        } catch (const Unavailable& error) {
            answer = {{"unavailable", error.what()}};
        } catch (const applet_host::HostError& error) {
            answer = {{"unavailable", error.what()}};
        } catch (const std::exception& error) {
            answer = {{"failure", error.what()}};
        }
        if (!send(socket, answer)) break;
    }
    _exit(0);
}

} // namespace

ScratchBoard::ScratchBoard(const Options& options, std::span<const JobRow> jobs) {
    int sockets[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0)
        throw Unavailable(std::string("no scratch board can be made: ") + std::strerror(errno));
    m_child = fork();
    if (m_child == 0) {
        close(sockets[0]);
        serve(sockets[1], options, jobs);
    }
    close(sockets[1]);
    m_socket = sockets[0];
    if (m_child < 0) throw Unavailable(std::string("no scratch board can be made: ") + std::strerror(errno));
}

ScratchBoard::~ScratchBoard() {
    close(m_socket);
    if (m_child > 0) waitpid(m_child, nullptr, 0);
}

json ScratchBoard::seed(const json& seed) { return request({{"seed", seed}}); }

json ScratchBoard::ask(const std::string& job, const json& arguments) {
    return request({{"job", job}, {"arguments", arguments}});
}

json ScratchBoard::request(const json& message) {
    json answer;
    if (!send(m_socket, message) || !receive(m_socket, answer))
        throw Failure("the scratch board has ended unexpectedly");
    if (answer.contains("usage")) throw UsageError(answer["usage"].get<std::string>());
    if (answer.contains("unavailable")) throw Unavailable(answer["unavailable"].get<std::string>());
    if (answer.contains("failure"))
        throw Failure("on the scratch board: " + answer["failure"].get<std::string>());
    return answer["result"];
}

} // namespace appletctl
