/** The HTTP server: connections, limits, and the protocol. It is a separate library, loaded when a station
 *  starts, because its dependencies would slow down each start of the program. */
#ifndef SERVE_HTTP_PROTOCOL_HTTPTRANSPORT_H
#define SERVE_HTTP_PROTOCOL_HTTPTRANSPORT_H

#include "serve/http/protocol/HttpMessage.h"

#include <memory>
#include <string>

namespace serve {

struct HttpEndpoint {
    std::string address = "127.0.0.1"; /**< to listen on */
    int port = 0;                      /**< 0: any */
    bool isFallbackAllowed = false;    /**< use any other port if this one is in use */
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

/** The function that the library exports. Returns null, with the reason, if it fails. */
constexpr const char* httpTransportFunction = "serveOpenHttpTransport";
using HttpTransportFunction = HttpTransport*(const HttpEndpoint& endpoint, HttpHandler& handler,
                                             std::string& problem);

} // namespace serve

#endif
