// The HTTP server of a station, by the library cpp-httplib.

#include "applet_tools/base/block_signals.h"
#include "serve/http/protocol/HttpTransport.h"
#include "serve/http/transport/ClientStream.h"

#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <set>
#include <thread>

namespace serve {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t mostConnections = 256;
constexpr std::size_t mostBodyBytes = 1U << 20U;
constexpr std::size_t mostFramingBytes = 64U << 10U; // of a chunked body
constexpr std::size_t longestPath = 1024;

/** Starts a thread for each connection, up to a limit: further connections are refused on the listening thread. */
class ConnectionThreads : public httplib::TaskQueue {
public:
    explicit ConnectionThreads(std::function<void()> refuse) : m_refuse(std::move(refuse)) {}

    void enqueue(std::function<void()> work) override {
        std::unique_lock lock(m_mutex);
        const bool isFull = m_count >= mostConnections;
        if (!isFull) ++m_count;
        lock.unlock();
        if (!isFull && start(work)) return;
        m_refuse();
        work();
    }
    void shutdown() override {
        std::unique_lock lock(m_mutex);
        m_ended.wait(lock, [this] { return m_count == 0; });
    }

private:
    bool start(const std::function<void()>& work) {
        try {
            std::thread([this, work] {
                work();
                end();
            }).detach();
            return true;
        } catch (const std::system_error&) { // no thread can be created
            end();
            return false;
        }
    }
    void end() {
        const std::lock_guard guard(m_mutex);
        --m_count;
        m_ended.notify_all(); // with the lock held: the object may be destroyed afterwards
    }

    std::function<void()> m_refuse;
    std::mutex m_mutex;
    std::condition_variable m_ended;
    std::size_t m_count = 0;
};

class Server : public httplib::Server {
public:
    explicit Server(HttpHandler& handler) : m_handler(handler) {
        set_socket_options([](int socket) { // without SO_REUSEPORT: one station per port
            constexpr int on = 1;
            setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        });
        set_payload_max_length(mostBodyBytes);
        set_keep_alive_timeout(
            ClientStream::longestIdle.count()); // these two are only announced to the client
        set_keep_alive_max_count(1'000'000);
        new_task_queue = [this] { return new ConnectionThreads([this] { m_isRefused = true; }); };
        set_pre_routing_handler(
            [this](const auto& request, auto& response) { return beforeBody(request, response); });
        const auto withBody = [this](const httplib::Request& request, httplib::Response& response) {
            fill(response, answerTo(asRequest(request)));
        };
        Put(".*", withBody);
        Post(".*", withBody);
        set_error_handler([this](const httplib::Request&, httplib::Response& response) {
            const bool isOwn = response.has_header("Content-Type"); // by fill()
            if (isOwn) return;
            const ClientStream& stream = *thisConnection().stream;
            fill(response, m_handler.invalid(stream.isHeadTooLong()   ? 431
                                             : stream.isBodyTooLong() ? 413
                                                                      : response.status));
        });
    }

    bool open(const HttpEndpoint& endpoint) {
        if (!bind_to_port(endpoint.address, endpoint.port)) return false;
        constexpr int backlog = 256;
        ::listen(svr_sock_, backlog);
        sockaddr_storage address{};
        socklen_t size = sizeof address;
        getsockname(svr_sock_, reinterpret_cast<sockaddr*>(&address), &size);
        m_port = ntohs(address.ss_family == AF_INET6 ? reinterpret_cast<sockaddr_in6*>(&address)->sin6_port
                                                     : reinterpret_cast<sockaddr_in*>(&address)->sin_port);
        return true;
    }
    int port() const { return m_port; }

    /** Ends the waits of all connections. */
    void closeConnections() {
        const std::lock_guard guard(m_mutex);
        m_isEnding = true;
        for (const int socket : m_sockets)
            shutdown(socket, SHUT_RDWR);
    }

private:
    HandlerResponse beforeBody(const httplib::Request& request, httplib::Response& response) {
        HttpRequest asked = asRequest(request);
        std::optional<HttpAnswer> refusal;
        if (request.path.size() > longestPath) refusal = m_handler.invalid(414);
        if (!refusal) refusal = m_handler.refusal(asked);
        const bool isBodySent =
            request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
        const bool takesBody = request.method == "PUT" || request.method == "POST";
        if (!refusal && takesBody && isBodySent) return HandlerResponse::Unhandled;
        fill(response, refusal ? *refusal : answerTo(asked));
        if (isBodySent) { // and is not read
            response.set_header("Connection", "close");
            thisConnection().closesAfterThis = true;
        }
        return HandlerResponse::Handled;
    }

    HttpAnswer answerTo(const HttpRequest& request) {
        try {
            return m_handler.answer(request);
        } catch (...) {
            return m_handler.invalid(500);
        }
    }

    static HttpRequest asRequest(const httplib::Request& request) {
        HttpRequest asked;
        asked.method = request.method == "HEAD" ? "GET" : request.method;
        asked.path = request.path;
        // The library's parameters would include those of a form in the body, as curl -d declares.
        httplib::Params query;
        if (const std::size_t begin = request.target.find('?'); begin != std::string::npos)
            httplib::detail::parse_query_text(request.target.substr(begin + 1), query);
        for (const auto& [name, value] : query)
            if (!asked.query.emplace(name, value).second) asked.repeatedName = name;
        asked.host = request.get_header_value("Host");
        asked.origin = request.get_header_value("Origin");
        asked.authorization = request.get_header_value("Authorization");
        asked.knownTag = request.get_header_value("If-None-Match");
        asked.encoding = request.get_header_value("Content-Encoding");
        asked.body = request.body;
        return asked;
    }

    static void fill(httplib::Response& response, const HttpAnswer& answer) {
        response.status = answer.status;
        for (const auto& [name, value] : answer.headers)
            response.set_header(name, value);
        if (answer.stream) {
            thisConnection().closesAfterThis = true;
            response.set_chunked_content_provider(
                answer.type, [stream = answer.stream](std::size_t, httplib::DataSink& sink) {
                    return stream([&](std::string_view text) {
                        return thisConnection().stream->isClientThere() &&
                               (text.empty() || sink.write(text.data(), text.size()));
                    });
                });
        } else if (answer.body != nullptr && !answer.body->empty()) {
            response.set_content_provider(
                answer.body->size(), answer.type,
                [body = answer.body](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
                    return sink.write(body->data() + offset, length);
                });
        } else if (!answer.type.empty()) {
            response.set_header("Content-Type", answer.type);
        }
    }

    /** Returns the answer to a request with an address that is too long to be read. */
    static std::string asText(const HttpAnswer& answer) {
        std::string text =
            "HTTP/1.1 414 URI Too Long\r\nConnection: close\r\nContent-Type: " + answer.type + "\r\n";
        for (const auto& [name, value] : answer.headers)
            text.append(name).append(": ").append(value).append("\r\n");
        return text + "Content-Length: " + std::to_string(answer.body->size()) + "\r\n\r\n" + *answer.body;
    }

    /** The connection that this thread serves. */
    struct Connection {
        ClientStream* stream = nullptr;
        bool closesAfterThis = false;
    };
    static Connection& thisConnection() {
        thread_local Connection connection;
        return connection;
    }

    bool process_and_close_socket(socket_t socket) override {
        if (m_isRefused) {
            m_isRefused = false;
            refuse(socket);
            return false;
        }
        ClientStream stream(socket);
        const Registration registration(*this, socket);
        thisConnection() = {&stream, false};
        while (!registration.isEnding() && stream.waitForRequest()) {
            bool isClosed = false;
            const auto prepare = [&stream](httplib::Request& request) {
                stream.beginBody(mostBodyBytes + mostFramingBytes);
                request.headers.erase("Accept-Encoding"); // compression would cost more than the loopback
                request.headers.erase("Range");
                request.headers.erase(
                    "Content-Type"); // the library has a lower limit for a form, as curl declares it
                request.ranges.clear();
            };
            const bool isAnswered = process_request(stream, false, isClosed, prepare);
            if (stream.isHeadTooLong() || stream.isBodyTooLong()) {
                if (!isAnswered) { // the address was not read
                    const std::string answer = asText(m_handler.invalid(414));
                    stream.write(answer.data(), answer.size());
                }
                stream.finish();
                break;
            }
            if (thisConnection().closesAfterThis) stream.finish();
            if (!isAnswered || isClosed || thisConnection().closesAfterThis) break;
        }
        return true;
    }

    static void refuse(int socket) {
        constexpr std::string_view answer = "HTTP/1.1 503 Service Unavailable\r\nContent-Length: 0\r\n"
                                            "Retry-After: 1\r\nConnection: close\r\n\r\n";
        send(socket, answer.data(), answer.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        close(socket);
    }

    /** Known to closeConnections() while it exists. */
    class Registration {
    public:
        Registration(Server& server, int socket) : m_server(server), m_socket(socket) {
            const std::lock_guard guard(m_server.m_mutex);
            m_server.m_sockets.insert(socket);
        }
        ~Registration() {
            const std::lock_guard guard(m_server.m_mutex);
            m_server.m_sockets.erase(m_socket);
        }
        Registration(const Registration&) = delete;
        Registration& operator=(const Registration&) = delete;

        bool isEnding() const {
            const std::lock_guard guard(m_server.m_mutex);
            return m_server.m_isEnding;
        }

    private:
        Server& m_server;
        int m_socket;
    };

    HttpHandler& m_handler;
    int m_port = 0;
    bool m_isRefused = false; // for the listening thread only
    std::mutex m_mutex;       // guards the members below
    std::set<int> m_sockets;
    bool m_isEnding = false;
};

class Transport : public HttpTransport {
public:
    explicit Transport(std::unique_ptr<Server> server)
        : m_server(std::move(server))
        , m_thread([this] {
            applet_tools::blockSignals();
            m_server->listen_after_bind();
            m_isOver = true;
        }) {}
    ~Transport() override {
        while (!m_server->is_running() && !m_isOver) // it cannot be stopped before
            std::this_thread::sleep_for(1ms);
        m_server->closeConnections();
        m_server->stop();
        m_thread.join();
    }
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;

    int port() const override { return m_server->port(); }

private:
    std::unique_ptr<Server> m_server;
    std::atomic<bool> m_isOver = false;
    std::thread m_thread; // last, as it uses the other members
};

} // namespace
} // namespace serve

extern "C" __attribute__((visibility("default"))) serve::HttpTransport*
serveOpenHttpTransport(const serve::HttpEndpoint& endpoint, serve::HttpHandler& handler,
                       std::string& problem) {
    serve::HttpEndpoint tried = endpoint;
    for (;;) {
        auto server = std::make_unique<serve::Server>(handler);
        if (server->open(tried)) return new serve::Transport(std::move(server));
        problem = "the station cannot listen on " + tried.address + ", port " +
                  std::to_string(endpoint.port) + ": " + std::strerror(errno);
        if (!tried.isFallbackAllowed || tried.port == 0) return nullptr;
        tried.port = 0;
    }
}
