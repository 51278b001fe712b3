#include "serve/http/transport/ClientStream.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace serve {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t mostHeadBytes = 16U << 10U;
constexpr auto longestRequest = 5s; // from its first byte to its last
constexpr auto longestWrite = 5s;   // until the client takes a piece

} // namespace

ClientStream::ClientStream(int socket) : m_socket(socket) {
    fcntl(socket, F_SETFD, FD_CLOEXEC);
    constexpr int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    // Unread bytes are buffered for each client: a small buffer limits latency.
    constexpr int bytes = 256 << 10;
    setsockopt(socket, SOL_SOCKET, SO_SNDBUF, &bytes, sizeof bytes);
}

ClientStream::~ClientStream() {
    shutdown(m_socket, SHUT_RDWR);
    close(m_socket);
}

bool ClientStream::waitFor(short events, Clock::time_point due) const {
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(due - Clock::now()).count();
        pollfd watched{m_socket, events, 0};
        const int result = poll(&watched, 1, static_cast<int>(std::max<std::int64_t>(left, 0)));
        if (result > 0) return (watched.revents & (events | POLLHUP)) != 0;
        if (result == 0 || errno != EINTR) return false;
    }
}

bool ClientStream::waitForRequest() {
    const auto longest = std::exchange(m_isFirst, false) ? longestRequest : longestIdle;
    if (m_begin == m_end && !waitFor(POLLIN, Clock::now() + longest)) return false;
    m_due = Clock::now() + longestRequest;
    m_bytesLeft = mostHeadBytes;
    m_isBody = false;
    return true;
}

void ClientStream::beginBody(std::size_t most) {
    m_bytesLeft = most + 1; // 0 left: the body exceeded its limit
    m_isBody = true;
}

bool ClientStream::is_readable() const { return m_begin < m_end || waitFor(POLLIN, m_due); }

bool ClientStream::isClientThere() const {
    pollfd watched{m_socket, POLLRDHUP, 0};
    return poll(&watched, 1, 0) == 0;
}

void ClientStream::finish() {
    constexpr auto longest = 500ms;
    constexpr int mostPieces = 64;
    shutdown(m_socket, SHUT_WR);
    const auto due = Clock::now() + longest;
    for (int i = 0; i < mostPieces && waitFor(POLLIN, due); ++i)
        if (recv(m_socket, m_buffer.data(), m_buffer.size(), MSG_DONTWAIT) <= 0) return;
}

/** A client that has closed its side for writing may still read; a disconnected one gives an error. */
bool ClientStream::is_writable() const {
    pollfd watched{m_socket, POLLOUT, 0};
    return poll(&watched, 1, static_cast<int>(std::chrono::milliseconds(longestWrite).count())) > 0 &&
           (watched.revents & (POLLERR | POLLHUP)) == 0;
}

ssize_t ClientStream::read(char* destination, std::size_t size) {
    if (m_bytesLeft == 0) return -1;
    if (m_begin == m_end) {
        if (!waitFor(POLLIN, m_due)) return -1;
        const ssize_t got = recv(m_socket, m_buffer.data(), m_buffer.size(), MSG_DONTWAIT);
        if (got <= 0) return got;
        m_begin = 0;
        m_end = static_cast<std::size_t>(got);
    }
    const std::size_t taken = std::min({size, m_end - m_begin, m_bytesLeft});
    std::memcpy(destination, m_buffer.data() + m_begin, taken);
    m_begin += taken;
    m_bytesLeft -= taken;
    return static_cast<ssize_t>(taken);
}

ssize_t ClientStream::write(const char* bytes, std::size_t size) {
    if (!waitFor(POLLOUT, Clock::now() + longestWrite)) return -1;
    return send(m_socket, bytes, size, MSG_NOSIGNAL | MSG_DONTWAIT);
}

void ClientStream::get_remote_ip_and_port(std::string& address, int& port) const {
    address.clear();
    port = 0;
}

void ClientStream::get_local_ip_and_port(std::string& address, int& port) const {
    address.clear();
    port = 0;
}

} // namespace serve
