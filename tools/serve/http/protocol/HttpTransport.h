/** The HTTP server: connections, limits, and the protocol. It is a library of its own, loaded when a station
 *  starts, since its dependencies would make each start of the program slower. */
#ifndef SERVE_HTTP_PROTOCOL_HTTPTRANSPORT_H
#define SERVE_HTTP_PROTOCOL_HTTPTRANSPORT_H

#include "serve/http/protocol/HttpMessage.h"

#include <memory>
#include <string>

namespace serve {

struct HttpEndpoint {
    std::string address = "127.0.0.1"; /**< to listen on */
    int port = 0;                      /**< 0: any */
    bool isFallbackAllowed = false;    /**< any other port if that one is in use */
};

/** Serves from the constructor to the destructor, which closes all connections. */
class HttpTransport {
public:
    virtual ~HttpTransport() = default;
    virtual int port() const = 0;
};

/** Throws Unavailable if the program was built without HTTP, and Failure if the address or port cannot be
 *  used. `handler` must live longer than the result. */
std::unique_ptr<HttpTransport> openHttp(const HttpEndpoint& endpoint, HttpHandler& handler);

/** The library exports a function of this name and type. Returns null, with the reason, if it fails. */
constexpr const char* httpTransportFunction = "serveOpenHttpTransport";
using HttpTransportFunction = HttpTransport*(const HttpEndpoint& endpoint, HttpHandler& handler,
                                             std::string& problem);

} // namespace serve

#endif
