// The input is a request to a station: query, Host, Origin and Authorization, a line each, and the body. Its parameters are
// read, or refused with a printable message, and only the token opens the station.

#include "applet_tools/base/text.h"
#include "invariants.h"
#include "serve/http/protocol/Guard.h"
#include "serve/http/protocol/Query.h"

#include <functional>

namespace {

using fuzz::require;
using serve::HttpRequest;

const std::string token = "0123456789abcdef";

std::string nextLine(std::string& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string line = text.substr(0, end);
    text.erase(0, end + 1);
    return line;
}

HttpRequest requestFrom(std::string text) {
    HttpRequest request;
    request.method = "PUT";
    request.path = "/api/parameters/FG_WIDTH";
    std::string query = nextLine(text);
    while (!query.empty()) {
        const std::size_t end = std::min(query.find('&'), query.size());
        const std::string part = query.substr(0, end);
        query.erase(0, end + 1);
        const std::size_t equals = std::min(part.find('='), part.size());
        request.query.emplace(part.substr(0, equals), part.substr(std::min(equals + 1, part.size())));
    }
    request.host = nextLine(text);
    request.origin = nextLine(text);
    request.authorization = nextLine(text);
    request.body = std::move(text);
    return request;
}

void readOrRefuse(const std::function<void()>& read) {
    try {
        read();
    } catch (const serve::HttpError& error) {
        const std::string message = error.what();
        require(!message.empty() && message.size() < 2000, "a message says what is wrong");
        require(applet_tools::printable(message) == message, "a message disturbs no terminal");
    }
}

void readQuery(const HttpRequest& request) {
    const serve::Query query(request);
    readOrRefuse([&] { requireNames(request, {"after", "fit", "region", "names", "format", "changed"}); });
    readOrRefuse([&] {
        const auto number = query.number("after", -5, 1000);
        require(!number || (*number >= -5 && *number <= 1000), "a number is within its limits");
    });
    readOrRefuse([&] {
        const auto size = query.size("fit");
        require(!size || ((*size)[0] > 0 && (*size)[1] > 0), "a size has pixels");
    });
    readOrRefuse(
        [&] { require(query.has("region") == query.rectangle("region").has_value(), "a region is read"); });
    readOrRefuse([&] {
        const std::string word = query.word("format", {"jpeg", "png", "raw"});
        require(word == "jpeg" || word == "png" || word == "raw", "a word is one of the known ones");
    });
    readOrRefuse(
        [&] { require(!query.flag("changed") || query.has("changed"), "a flag is set by its name"); });
    for (const std::string& name : query.list("names"))
        require(name.find(',') == std::string::npos, "a list has no commas");
}

void readBody(const HttpRequest& request) {
    readOrRefuse([&] {
        const serve::Json body = serve::bodyOf(request, {"value", "settings", "points"});
        for (const auto& [name, value] : body.items())
            readOrRefuse(
                [&value = value] { require(serve::valueWord(value).size() < 100'000, "a value is a word"); });
    });
}

void checkGuard(const HttpRequest& request) {
    const serve::Guard local(token, false, {}), remote(token, true, {"line-7"});
    require(!local.isFromHere(request) || remote.isFromHere(request), "with --listen more hosts are served");
    const bool isInHeader = request.authorization.ends_with(" " + token);
    const auto inQuery = request.query.find("token");
    const bool isInQuery = inQuery != request.query.end() && inQuery->second == token;
    require(!local.hasToken(request) || isInHeader || isInQuery, "only the token opens the station");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const HttpRequest request = requestFrom({reinterpret_cast<const char*>(data), size});
    readQuery(request);
    readBody(request);
    checkGuard(request);
    return 0;
}
