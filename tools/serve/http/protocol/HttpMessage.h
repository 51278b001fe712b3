/** Requests and answers of a station's HTTP interface. */
#ifndef SERVE_HTTP_PROTOCOL_HTTPMESSAGE_H
#define SERVE_HTTP_PROTOCOL_HTTPMESSAGE_H

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace serve {

struct HttpRequest {
    std::string method;                       /**< "GET" also for a HEAD */
    std::string path;                         /**< decoded, without the query */
    std::map<std::string, std::string> query; /**< decoded; the first value of each name */
    std::string repeatedName;                 /**< a name that the query has more than once; empty: none */
    std::string host, origin, authorization;  /**< the headers of these names; empty if missing */
    std::string knownTag;                     /**< If-None-Match */
    std::string encoding;                     /**< Content-Encoding */
    std::string body;
};

/** Sends a piece of an endless answer; returns false if the client has disconnected or does not read. An empty piece only
 *  checks whether the client is connected. */
using HttpSend = std::function<bool(std::string_view)>;

struct HttpAnswer {
    int status = 200;
    std::string type = "application/json";
    std::shared_ptr<const std::string>
        body{}; /**< shared by all clients that get the same body; null: empty */
    std::vector<std::pair<std::string, std::string>> headers{};
    /** For an endless answer, in place of the body: called repeatedly until it returns false. */
    std::function<bool(const HttpSend&)> stream{};
};

/** Answers requests. Several threads call its members at the same time. */
class HttpHandler {
public:
    virtual ~HttpHandler() = default;
    /** Called before the body is read. Returns an answer if the request is refused. */
    virtual std::optional<HttpAnswer> refusal(const HttpRequest& request) = 0;
    virtual HttpAnswer answer(const HttpRequest& request) = 0;
    /** Returns the answer to a request that is not valid HTTP or exceeds a limit, with this status. */
    virtual HttpAnswer invalid(int status) = 0;
};

} // namespace serve

#endif
