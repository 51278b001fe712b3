#include "serve/http/StationHttp.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "serve/http/protocol/Query.h"
#include "serve/http/routes/file_api.h"
#include "serve/http/routes/page_files.h"
#include "serve/http/routes/parameter_api.h"
#include "serve/http/routes/picture_api.h"
#include "serve/http/routes/station_api.h"

#include <malloc.h>
#include <unistd.h>

#include <array>
#include <set>
#include <string_view>

namespace serve {
namespace {

using RouteFunction = HttpAnswer(SharedStation&, const HttpRequest&, const std::string& name);

struct Route {
    std::string_view method,
        path; /**< "/{name}" at the end of a path: the last part is passed to the route */
    RouteFunction* function;
    std::string_view query{}; /**< accepted names of the query, with spaces between them */
};

constexpr Route routes[] = {
    {"GET", "/api/station", showStation},
    {"GET", "/api/parameters", listParameters, "names changed"},
    {"GET", "/api/parameters/{name}", showParameter},
    {"PUT", "/api/parameters/{name}", setParameter},
    {"POST", "/api/settings", setSeveral},
    {"GET", "/api/acquisition", showAcquisition},
    {"POST", "/api/acquisition", setAcquisition},
    {"GET", "/api/frame", sendFrame, "after timeout picture format quality region fit"},
    {"GET", "/api/pictures", sendRecords},
    {"GET", "/api/pixel", sendPixel, "picture x y"},
    {"GET", "/api/histogram", sendHistogram, "picture region"},
    {"GET", "/api/profile", sendProfile, "picture line column width"},
    {"GET", "/api/stream", streamEvents},
    {"GET", "/api/timeline", showTimeline, "from to names most"},
    {"GET", "/api/losses", showLosses},
    {"GET", "/api/configuration", sendConfiguration},
    {"PUT", "/api/configuration", loadConfiguration},
    {"GET", "/api/lut/{name}", showTable, "points"},
    {"PUT", "/api/lut/{name}", setTable},
    {"GET", "/api/belt", showBelt},
    {"PUT", "/api/belt", setBelt},
    {"GET", "/api/scene", showScene},
    {"PUT", "/api/scene", setScene},
    {"GET", "/api/record", recordPictures, "count"},
    {"GET", "/metrics", sendMetrics},
};

constexpr std::string_view assets = "/assets/", named = "{name}";

/** Returns the name of the file at a path; empty if there is none. Files have no state and need no token. */
std::string_view fileOf(std::string_view path) {
    if (path == "/" || path == "/index.html") return "index.html";
    if (path == "/api/openapi.json") return "openapi.json";
    return path.starts_with(assets) ? path.substr(assets.size()) : "";
}

/** True if the path is the route's; then `name` is its last part. */
bool isAt(const Route& route, const std::string& path, std::string& name) {
    if (!route.path.ends_with(named)) return path == route.path;
    const std::string_view before = route.path.substr(0, route.path.size() - named.size());
    if (!path.starts_with(before) || path.size() == before.size()) return false;
    name = path.substr(before.size());
    return name.find('/') == std::string::npos;
}

struct Destination {
    const Route* route;
    std::string name; /**< the last part of the path, if it is passed on */
};

/** Returns the methods that a path supports, with commas between them. */
std::string methodsAt(const std::string& path) {
    std::string name, methods;
    for (const Route& route : routes)
        if (isAt(route, path, name)) methods += (methods.empty() ? "" : ", ") + std::string(route.method);
    return methods;
}

/** Throws HttpError for an unknown path, and for a method that the path does not support. */
Destination destinationOf(const HttpRequest& request) {
    std::string name;
    for (const Route& route : routes)
        if (route.method == request.method && isAt(route, request.path, name)) return {&route, name};
    if (const std::string methods = methodsAt(request.path); !methods.empty())
        throw HttpError(status::notAllowed, "invalid", request.path + " takes " + methods);
    std::set<std::string> known;
    for (const Route& route : routes)
        known.emplace(route.path);
    throw HttpError(status::notFound, "unknown",
                    "there is no " + applet_tools::inQuotes(applet_tools::shortened(request.path, 60)) +
                        "; there are " + applet_tools::join({known.begin(), known.end()}, ", "));
}

bool isForFile(const HttpRequest& request) {
    return request.path == "/favicon.ico" || findPageFile(fileOf(request.path)) != nullptr;
}

/** Headers of all answers: other sites may not use them, and a page may load only from this server. */
void addSafety(HttpAnswer& answer) {
    constexpr const char* policy =
        "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob: data:; "
        "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";
    constexpr std::array<std::pair<const char*, const char*>, 5> headers = {
        {{"Content-Security-Policy", policy},
         {"X-Content-Type-Options", "nosniff"},
         {"Referrer-Policy", "no-referrer"},
         {"Cross-Origin-Resource-Policy", "same-origin"},
         {"X-Frame-Options", "DENY"}}};
    answer.headers.insert(answer.headers.end(), headers.begin(), headers.end());
}

std::vector<std::string> ownNames() {
    std::array<char, 256> name{};
    if (gethostname(name.data(), name.size() - 1) != 0) return {};
    return {name.data()};
}

bool isLoopbackAddress(const std::string& address) { return address.starts_with("127.") || address == "::1"; }

/** Returns the host part of an address: IPv6 in brackets, and the loopback for the addresses of all interfaces. */
std::string hostOf(const std::string& address) {
    if (address == "0.0.0.0") return "127.0.0.1";
    if (address == "::") return "[::1]";
    return address.find(':') == std::string::npos ? address : '[' + address + ']';
}

/** Returns the answer to the exception that is being handled. */
HttpAnswer answerToException() {
    try {
        throw;
    } catch (const HttpError& error) {
        return errorAnswer(error);
    } catch (const Busy& error) {
        return errorAnswer({status::unavailable, "busy", error.what()});
    } catch (const applet_tools::UsageError& error) {
        return errorAnswer({status::badRequest, "invalid", error.what()});
    } catch (const applet_tools::Unavailable& error) {
        return errorAnswer({status::unavailable, "none", error.what()});
    } catch (const applet_tools::Failure& error) {
        return errorAnswer({status::conflict, "refused", error.what()});
    } catch (const std::exception& error) {
        return errorAnswer({status::internal, "internal", error.what()});
    }
}

/** Each connection has a thread of its own: without these bounds the heap would grow with each of them. */
void boundHeap() {
    constexpr int arenas = 2, mappedBytes = 256 << 10;
    mallopt(M_ARENA_MAX, arenas);
    mallopt(M_MMAP_THRESHOLD, mappedBytes);
}

} // namespace

StationHttp::StationHttp(LiveStation& station, const HttpEndpoint& endpoint, const std::string& token)
    : m_guard(token, !isLoopbackAddress(endpoint.address), ownNames())
    , m_station(station)
    , m_host(hostOf(endpoint.address))
    , m_transport(openHttp(endpoint, *this)) {
    boundHeap();
}

StationHttp::~StationHttp() {
    m_station.live.close();
    m_station.hub.close();
    m_transport.reset();
}

std::string StationHttp::address(bool withToken) const {
    return "http://" + m_host + ':' + std::to_string(m_transport->port()) + '/' +
           (withToken ? "?token=" + m_guard.token() : "");
}

std::optional<HttpAnswer> StationHttp::refusal(const HttpRequest& request) {
    std::optional<HttpAnswer> refused;
    if (!m_guard.isFromHere(request))
        refused =
            errorAnswer({status::forbidden,
                         "forbidden",
                         "the request comes from another site, or under a name that is not this machine's",
                         {{"advice", "open the address that 'appletctl station address' prints"}}});
    else if (!isForFile(request) && !m_guard.hasToken(request))
        refused = errorAnswer({status::unauthorised,
                               "forbidden",
                               "the request has no valid token",
                               {{"advice", "open the address that 'appletctl station address' prints"}}});
    if (refused)
        ++m_station.refusedRequests;
    else
        refused = refusalOfRequest(request);
    if (refused) addSafety(*refused);
    return refused;
}

/** Checks a request before its body is read. */
std::optional<HttpAnswer> StationHttp::refusalOfRequest(const HttpRequest& request) {
    try {
        if (!request.encoding.empty())
            throw HttpError(status::unknownEncoding, "invalid",
                            "the body is encoded as " +
                                applet_tools::inQuotes(applet_tools::shortened(request.encoding, 40)) +
                                ": send it as it is");
        if (isForFile(request) && request.method == "GET") return std::nullopt;
        const Destination destination = destinationOf(request);
        requireNames(request, applet_tools::splitLine(std::string(destination.route->query)).words);
        if (request.method != "GET") m_station.requireSettable();
        return std::nullopt;
    } catch (...) {
        ++m_station.requests;
        HttpAnswer refused = answerToException();
        if (refused.status == status::notAllowed)
            refused.headers.emplace_back("Allow", methodsAt(request.path));
        return refused;
    }
}

HttpAnswer StationHttp::answer(const HttpRequest& request) {
    ++m_station.requests;
    HttpAnswer answer;
    try {
        if (request.path == "/favicon.ico") return {.status = status::noContent, .type = ""};
        if (const PageFile* const file = findPageFile(fileOf(request.path))) {
            answer = fileAnswer(*file, request);
        } else {
            const Destination destination = destinationOf(request);
            answer = destination.route->function(m_station, request, destination.name);
        }
    } catch (...) {
        answer = answerToException();
    }
    addSafety(answer);
    return answer;
}

HttpAnswer StationHttp::invalid(int code) {
    HttpAnswer answer = errorAnswer(
        {code, code == status::internal ? "internal" : "invalid",
         code == status::tooLarge ? "the body of the request is larger than a megabyte"
         : code == status::tooLong
             ? "the address of the request is too long: 1 kilobyte is allowed, with its query 8"
         : code == status::headTooLarge
             ? "the head of the request, which is its address and headers, is larger than 16 kilobytes"
         : code == status::internal ? "the request failed"
                                    : "the request is not valid HTTP"});
    addSafety(answer);
    return answer;
}

} // namespace serve
