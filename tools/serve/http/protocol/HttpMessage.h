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
    std::string repeatedName;                 /**< of the query; empty: each name is there once */
    std::string host, origin, authorization;  /**< the headers of these names; empty if missing */
    std::string knownTag;                     /**< If-None-Match */
    std::string encoding;                     /**< Content-Encoding */
    std::string body;
};

/** Sends a piece of an endless answer; false when the client is gone or does not read. An empty piece only asks
 *  whether the client is still there. */
using HttpSend = std::function<bool(std::string_view)>;

struct HttpAnswer {
    int status = 200;
    std::string type = "application/json";
    std::shared_ptr<const std::string> body{}; /**< shared by all clients that get the same; null: empty */
    std::vector<std::pair<std::string, std::string>> headers{};
    /** For an answer without an end, in place of the body: called again and again until it returns false. */
    std::function<bool(const HttpSend&)> stream{};
};

/** Answers requests. Its members are called by several threads at a time. */
class HttpHandler {
public:
    virtual ~HttpHandler() = default;
    /** Called before the body is read: an answer that refuses the request. */
    virtual std::optional<HttpAnswer> refusal(const HttpRequest& request) = 0;
    virtual HttpAnswer answer(const HttpRequest& request) = 0;
    /** The answer to a request that is not valid HTTP or is beyond a limit, with its status. */
    virtual HttpAnswer invalid(int status) = 0;
};

} // namespace serve

#endif
