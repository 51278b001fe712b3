#include "serve/http/protocol/Query.h"

#include "applet_tools/base/DocumentField.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>

namespace serve {
namespace {

[[noreturn]] void throwInvalid(const std::string& name, const std::string& text,
                               const std::string& expected) {
    throw HttpError(status::badRequest, "invalid",
                    name + "=" + applet_tools::shortened(applet_tools::printable(text), 60) + ": " +
                        expected + " is expected");
}

std::string shownName(const std::string& name) {
    return applet_tools::inQuotes(applet_tools::shortened(applet_tools::printable(name), 60));
}

applet_tools::Words splitAt(const std::string& text, char separator) {
    applet_tools::Words parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);)
        parts.push_back(part);
    return parts;
}

template <std::size_t Count>
std::array<std::uint32_t, Count> numbersFrom(const std::string& name, const std::string& text, char separator,
                                             const std::string& expected) {
    const applet_tools::Words parts = splitAt(text, separator);
    std::array<std::uint32_t, Count> numbers{};
    for (std::size_t i = 0; i < Count; ++i) {
        const auto number =
            parts.size() == Count ? applet_tools::wholeNumber<std::uint32_t>(parts[i]) : std::nullopt;
        if (!number) throwInvalid(name, text, expected);
        numbers[i] = *number;
    }
    return numbers;
}

} // namespace

std::string Query::text(const std::string& name) const {
    const auto found = m_request.query.find(name);
    return found == m_request.query.end() ? "" : found->second;
}

std::optional<std::int64_t> Query::number(const std::string& name, std::int64_t least,
                                          std::int64_t most) const {
    if (!has(name)) return std::nullopt;
    const auto number = applet_tools::wholeNumber<std::int64_t>(text(name));
    if (!number || *number < least || *number > most) {
        const bool isBounded = most < std::numeric_limits<std::int64_t>::max();
        throwInvalid(name, text(name),
                     "a whole number from " + std::to_string(least) +
                         (isBounded ? " to " + std::to_string(most) : " on"));
    }
    return number;
}

std::string Query::word(const std::string& name, const applet_tools::Words& allowed) const {
    if (!has(name)) return allowed.front();
    std::string given = text(name);
    if (std::ranges::find(allowed, given) == allowed.end())
        throwInvalid(name, given, "one of " + applet_tools::join(allowed, ", "));
    return given;
}

bool Query::flag(const std::string& name) const {
    if (!has(name)) return false;
    const std::string given = word(name, {"1", "true", "0", "false"});
    return given == "1" || given == "true";
}

applet_tools::Words Query::list(const std::string& name) const { return splitAt(text(name), ','); }

std::optional<std::array<std::uint32_t, 2>> Query::size(const std::string& name) const {
    if (!has(name)) return std::nullopt;
    const auto size = numbersFrom<2>(name, text(name), 'x', "a size such as 640x480");
    if (size[0] == 0 || size[1] == 0) throwInvalid(name, text(name), "a size above 0");
    return size;
}

std::optional<std::array<std::uint32_t, 4>> Query::rectangle(const std::string& name) const {
    if (!has(name)) return std::nullopt;
    return numbersFrom<4>(name, text(name), ',', "x,y,width,height in pixels");
}

void requireNames(const HttpRequest& request, const applet_tools::Words& known) {
    if (!request.repeatedName.empty())
        throw HttpError(status::badRequest, "invalid",
                        "the query of " + request.path + " has " + shownName(request.repeatedName) +
                            " more than once");
    for (const auto& [name, value] : request.query) {
        if (name == "token" || std::ranges::find(known, name) != known.end()) continue;
        throw HttpError(
            status::badRequest, "invalid",
            "the query of " + request.path + " has no " + shownName(name) +
                (known.empty() ? ": it takes none" : ": it takes " + applet_tools::join(known, ", ")));
    }
}

void requireMembers(const Json& object, const applet_tools::Words& members, const std::string& what) {
    for (const auto& [name, value] : object.items())
        if (std::ranges::find(members, name) == members.end())
            throw HttpError(status::badRequest, "invalid",
                            what + " has no member " + shownName(name) + ": there " +
                                (members.size() == 1 ? "is " : "are ") + applet_tools::join(members, ", "));
}

Json bodyOf(const HttpRequest& request, const applet_tools::Words& members) {
    if (request.body.empty())
        throw HttpError(status::badRequest, "invalid", "the request has no body: a JSON object is expected");
    Json body;
    try {
        body = applet_tools::parseDocument(request.body);
    } catch (const applet_tools::UsageError& error) {
        throw HttpError(status::badRequest, "invalid",
                        std::string("the body of the request: ") + error.what());
    }
    if (!body.is_object())
        throw HttpError(status::badRequest, "invalid", "the body of the request is not a JSON object");
    requireMembers(body, members, "the body");
    return body;
}

std::string valueWord(const Json& value) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_number_float()) {
        constexpr double mostExact = 9007199254740992; // 2 to the 53rd
        const auto number = value.get<double>();
        if (std::abs(number) <= mostExact && std::floor(number) == number)
            return std::to_string(static_cast<std::int64_t>(number));
    }
    if (value.is_number()) return value.dump();
    throw HttpError(status::badRequest, "invalid",
                    "a value is a number or a text, and not " + applet_tools::shownValue(value));
}

} // namespace serve
