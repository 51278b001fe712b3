/** Decides which requests are served. */
#ifndef SERVE_HTTP_PROTOCOL_GUARD_H
#define SERVE_HTTP_PROTOCOL_GUARD_H

#include "serve/http/protocol/HttpMessage.h"

#include <string>
#include <string_view>
#include <vector>

namespace serve {

/** Returns 128 random bits in hexadecimal. Throws Failure. */
std::string randomToken();

/** Compares two texts in a time that depends only on their lengths. */
bool areSame(std::string_view a, std::string_view b);

/** Returns the name in a Host header, in lower case and without the port: "localhost", "127.0.0.1", "[::1]". Empty if it
 *  is invalid. */
std::string hostName(std::string_view header);

/** True for an IPv4 address in decimal or an IPv6 address in square brackets. A page cannot make a browser send such
 *  a Host header to the address of another server. */
bool isAddress(std::string_view name);

class Guard {
public:
    /** `names`: accepted names of this machine, in addition to localhost and addresses. Without `isRemote` only
     *  addresses of the loopback are accepted. */
    Guard(std::string token, bool isRemote, std::vector<std::string> names);

    const std::string& token() const { return m_token; }
    /** False if the request may be from a page of another site: Host is an unknown name, or Origin is not the
     *  addressed server. */
    bool isFromHere(const HttpRequest& request) const;
    /** True if the request has the token, as a bearer or in the query. */
    bool hasToken(const HttpRequest& request) const;

private:
    std::string m_token;
    bool m_isRemote;
    std::vector<std::string> m_names;
};

} // namespace serve

#endif
