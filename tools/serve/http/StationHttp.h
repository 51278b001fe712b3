/** The HTTP interface of a running station. */
#ifndef SERVE_HTTP_STATIONHTTP_H
#define SERVE_HTTP_STATIONHTTP_H

#include "serve/http/protocol/Guard.h"
#include "serve/http/protocol/HttpTransport.h"
#include "serve/http/state/SharedStation.h"

#include <memory>
#include <string>

namespace serve {

/**
 * Serves from the constructor to the destructor. Its threads do not use the applet; they pass work to the command
 * thread, which creates the object and calls its members.
 */
class StationHttp : private HttpHandler {
public:
    /** Throws Unavailable if the program was built without HTTP, and Failure if it cannot listen. */
    StationHttp(LiveStation& station, const HttpEndpoint& endpoint, const std::string& token);
    ~StationHttp() override;
    StationHttp(const StationHttp&) = delete;
    StationHttp& operator=(const StationHttp&) = delete;

    /** Returns "http://127.0.0.1:8042/"; with the token, an address for a browser. */
    std::string address(bool withToken) const;

    /** Call this on the command thread, some times a second. */
    void watchSource() { m_station.watchSource(); }

private:
    std::optional<HttpAnswer> refusal(const HttpRequest& request) override;
    HttpAnswer answer(const HttpRequest& request) override;
    std::optional<HttpAnswer> refusalOfRequest(const HttpRequest& request);
    HttpAnswer invalid(int status) override;

    Guard m_guard;
    SharedStation m_station;
    const std::string m_host;                   // in the address
    std::unique_ptr<HttpTransport> m_transport; // last, as it uses the other members
};

} // namespace serve

#endif
