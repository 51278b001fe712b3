/** A client's connection, with limits on bytes and time. */
#ifndef SERVE_HTTP_TRANSPORT_CLIENTSTREAM_H
#define SERVE_HTTP_TRANSPORT_CLIENTSTREAM_H

#include <httplib.h>

#include <array>
#include <chrono>
#include <string_view>

namespace serve {

/** Reads fail after a request has taken too long or its head has too many bytes, and writes after the client has
 *  not read for too long. The destructor closes the socket. */
class ClientStream : public httplib::Stream {
public:
    static constexpr std::chrono::seconds longestIdle{30}; /**< between two requests */

    explicit ClientStream(int socket);
    ~ClientStream() override;
    ClientStream(const ClientStream&) = delete;
    ClientStream& operator=(const ClientStream&) = delete;

    /** Waits for the first byte of the next request, and starts its limits. Returns false if there is none. The first
     *  request must start at once; later ones may take longer. */
    bool waitForRequest();
    /** Call this when the head is complete and a body of at most this many bytes may follow. */
    void beginBody(std::size_t most);
    /** False once the client has closed its side. */
    bool isClientThere() const;
    /** True if the head or the body exceeded its limit. */
    bool isHeadTooLong() const { return m_bytesLeft == 0 && !m_isBody; }
    bool isBodyTooLong() const { return m_bytesLeft == 0 && m_isBody; }
    /** Ends the answers, and reads some of the remaining input: closing a socket with unread bytes would discard the last
     *  answer. */
    void finish();

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char* destination, std::size_t size) override;
    ssize_t write(const char* bytes, std::size_t size) override;
    void get_remote_ip_and_port(std::string& address, int& port) const override;
    void get_local_ip_and_port(std::string& address, int& port) const override;
    int socket() const override { return m_socket; }

private:
    using Clock = std::chrono::steady_clock;

    bool waitFor(short events, Clock::time_point due) const;

    int m_socket;
    std::array<char, 4096> m_buffer{};
    std::size_t m_begin = 0, m_end = 0; // unread bytes of the buffer
    std::size_t m_bytesLeft = 0;        // remaining limit of the head or of the body
    bool m_isBody = false;
    bool m_isFirst = true; // no request has come yet
    Clock::time_point m_due{};
};

} // namespace serve

#endif
