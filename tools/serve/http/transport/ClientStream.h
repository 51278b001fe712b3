/** A client's connection, with limits on bytes and time. */
#ifndef SERVE_HTTP_TRANSPORT_CLIENTSTREAM_H
#define SERVE_HTTP_TRANSPORT_CLIENTSTREAM_H

#include <httplib.h>

#include <array>
#include <chrono>
#include <string_view>

namespace serve {

/** Reads fail once a request has taken too long or its head has too many bytes, and writes once the client has
 *  not read for too long. Closes the socket in the destructor. */
class ClientStream : public httplib::Stream {
public:
    static constexpr std::chrono::seconds longestIdle{30}; /**< between two requests */

    explicit ClientStream(int socket);
    ~ClientStream() override;
    ClientStream(const ClientStream&) = delete;
    ClientStream& operator=(const ClientStream&) = delete;

    /** Waits for the first byte of the next request, and begins its limits. False if none comes. The first request must come
     *  at once; later ones may take a while. */
    bool waitForRequest();
    /** The head is complete, and a body of this many bytes may follow. */
    void beginBody(std::size_t most);
    /** False once the client has closed its side. */
    bool isClientThere() const;
    /** True if the head, or the body, was longer than is read. */
    bool isHeadTooLong() const { return m_bytesLeft == 0 && !m_isBody; }
    bool isBodyTooLong() const { return m_bytesLeft == 0 && m_isBody; }
    /** Ends the answers, and reads some of what the client still sends: with unread bytes a close would take the
     *  last answer back. */
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
    std::size_t m_bytesLeft = 0;        // of the head, or of the body, that may still come
    bool m_isBody = false;
    bool m_isFirst = true; // no request has come yet
    Clock::time_point m_due{};
};

} // namespace serve

#endif
