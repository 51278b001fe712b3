#include "serve/http/protocol/Guard.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"

#include <arpa/inet.h>
#include <sys/random.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace serve {
namespace {

using applet_tools::lowerCase;

bool isLoopback(std::string_view name) {
    return name == "localhost" || name == "[::1]" || (name.starts_with("127.") && isAddress(name));
}

} // namespace

std::string randomToken() {
    std::array<unsigned char, 16> bytes{};
    if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        throw applet_tools::Failure(std::string("no random token can be created: ") + std::strerror(errno));
    constexpr std::string_view digits = "0123456789abcdef";
    std::string token;
    for (const unsigned char byte : bytes)
        token += {digits[byte >> 4U], digits[byte & 0xfU]};
    return token;
}

bool areSame(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    unsigned char difference = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        difference |= static_cast<unsigned char>(a[i] ^ b[i]);
    return difference == 0;
}

std::string hostName(std::string_view header) {
    const std::size_t end = header.starts_with('[') ? header.find(']') + 1 : header.find(':');
    if (header.starts_with('[') && end == 0) return "";
    const std::string_view rest = end < header.size() ? header.substr(end) : "";
    const bool isPort = rest.empty() || (rest.front() == ':' &&
                                         rest.find_first_not_of("0123456789", 1) == std::string_view::npos);
    return isPort ? lowerCase(header.substr(0, end)) : "";
}

bool isAddress(std::string_view name) {
    in6_addr ignored{};
    if (name.starts_with('[') && name.ends_with(']'))
        return inet_pton(AF_INET6, std::string(name.substr(1, name.size() - 2)).c_str(), &ignored) == 1;
    return inet_pton(AF_INET, std::string(name).c_str(), &ignored) == 1;
}

Guard::Guard(std::string token, bool isRemote, std::vector<std::string> names)
    : m_token(std::move(token))
    , m_isRemote(isRemote)
    , m_names(std::move(names)) {
    for (std::string& name : m_names)
        name = lowerCase(name);
}

bool Guard::isFromHere(const HttpRequest& request) const {
    const std::string name = hostName(request.host);
    const bool isKnown =
        isLoopback(name) ||
        (m_isRemote && (isAddress(name) || std::ranges::find(m_names, name) != m_names.end()));
    if (!isKnown) return false;
    if (request.origin.empty()) return true;
    return lowerCase(request.origin) == "http://" + lowerCase(request.host);
}

bool Guard::hasToken(const HttpRequest& request) const {
    constexpr std::string_view bearer = "bearer "; // the names of schemes have no case
    if (lowerCase(request.authorization.substr(0, bearer.size())) == bearer)
        return areSame(std::string_view(request.authorization).substr(bearer.size()), m_token);
    const auto found = request.query.find("token");
    return found != request.query.end() && areSame(found->second, m_token);
}

} // namespace serve
