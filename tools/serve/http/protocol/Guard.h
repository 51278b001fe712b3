/** Decides which requests are served. */
#ifndef SERVE_HTTP_PROTOCOL_GUARD_H
#define SERVE_HTTP_PROTOCOL_GUARD_H

#include "serve/http/protocol/HttpMessage.h"

#include <string>
#include <string_view>
#include <vector>

namespace serve {

/** 128 random bits in hexadecimal. Throws Failure. */
std::string randomToken();

/** Compares in a time that depends only on the lengths. */
bool areSame(std::string_view a, std::string_view b);

/** The name in a Host header, in lower case and without the port: "localhost", "127.0.0.1", "[::1]". Empty if it is
 *  invalid. */
std::string hostName(std::string_view header);

/** True for an IPv4 address in decimal or an IPv6 address in square brackets. No page can make a browser send such
 *  a Host header to another server's address. */
bool isAddress(std::string_view name);

class Guard {
public:
    /** `names` are the names of this machine under which it may be addressed, besides localhost and addresses.
     *  Without `isRemote` only the addresses of the loopback. */
    Guard(std::string token, bool isRemote, std::vector<std::string> names);

    const std::string& token() const { return m_token; }
    /** False if the request may come from a page of another site: an unknown name in Host, or an Origin that is
     *  not the addressed server. */
    bool isFromHere(const HttpRequest& request) const;
    /** True if it has the token, as a bearer or in the query. */
    bool hasToken(const HttpRequest& request) const;

private:
    std::string m_token;
    bool m_isRemote;
    std::vector<std::string> m_names;
};

} // namespace serve

#endif
