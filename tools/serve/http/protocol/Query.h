/** Parameters of a request: its query and its body. */
#ifndef SERVE_HTTP_PROTOCOL_QUERY_H
#define SERVE_HTTP_PROTOCOL_QUERY_H

#include "applet_tools/base/words.h"
#include "serve/http/protocol/HttpError.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace serve {

/** The query of a request. Members throw an HttpError for an invalid value, with the value and what is expected. */
class Query {
public:
    explicit Query(const HttpRequest& request) : m_request(request) {}

    bool has(const std::string& name) const { return m_request.query.contains(name); }
    /** Returns the text; empty if the name is missing. */
    std::string text(const std::string& name) const;
    std::optional<std::int64_t> number(const std::string& name, std::int64_t least, std::int64_t most) const;
    /** Returns one of these words; the first one if the name is missing. */
    std::string word(const std::string& name, const applet_tools::Words& allowed) const;
    /** "1", "0", "true", "false"; false if the name is missing. */
    bool flag(const std::string& name) const;
    /** Returns the parts of "A,B,C"; empty if the name is missing. */
    applet_tools::Words list(const std::string& name) const;
    /** "WIDTHxHEIGHT". */
    std::optional<std::array<std::uint32_t, 2>> size(const std::string& name) const;
    /** "X,Y,WIDTH,HEIGHT". */
    std::optional<std::array<std::uint32_t, 4>> rectangle(const std::string& name) const;

private:
    const HttpRequest& m_request;
};

/** Throws HttpError if the query has a name that is neither one of these nor "token". */
void requireNames(const HttpRequest& request, const applet_tools::Words& known);

/** Parses the body as JSON. Throws HttpError unless it is an object with no other members than these. */
Json bodyOf(const HttpRequest& request, const applet_tools::Words& members);
/** Throws HttpError if an object has other members than these; `what` names it: "the body". */
void requireMembers(const Json& object, const applet_tools::Words& members, const std::string& what);

/** Converts a number or a text to the value of an assignment: "2048", also for 2048.0. Throws HttpError. */
std::string valueWord(const Json& value);

} // namespace serve

#endif
