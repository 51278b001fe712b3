#include "appletctl/cli/station/http_options.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "serve/http/protocol/Guard.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstring>
#include <fstream>

namespace appletctl {
namespace {

using namespace applet_tools;

constexpr int usualPort = 8042, largestPort = 65535;
constexpr std::size_t fewestCharacters = 16, mostCharacters = 128;

} // namespace

void addHttpOptions(CLI::App& command, Options& options) {
    auto& own = options.own<HttpOptions>();
    CLI::Option* const off =
        command.add_flag("--no-http", own.isOff, "Without the page and the HTTP interface");
    const auto add = [&](const char* name, auto& value, const char* kind, const char* help) {
        return command.add_option(name, value, help)->type_name(kind)->excludes(off);
    };
    add("--port", own.port, "N", "Port of the page; 8042 if not given, or any if that is in use. 0: any")
        ->check(CLI::Range(0, largestPort));
    add("--listen", own.address, "ADDRESS",
        "IP address to listen on, the loopback 127.0.0.1 if not given: with another one everybody who knows "
        "the "
        "token reaches the station, unencrypted");
    add("--token-file", own.tokenFile, "FILE",
        "File with the token of the address in its first line, 16 to 128 letters, digits, - and _; a new "
        "random one "
        "if not given");
    command.add_flag("--allow-set", own.maySet,
                     "Let the page and GenICam clients set parameters; without it they only show them");
}

serve::HttpEndpoint httpEndpoint(const HttpOptions& options) {
    std::string address = options.address;
    if (address == "localhost") address = "127.0.0.1";
    if (!serve::isAddress(address) && !serve::isAddress('[' + address + ']'))
        throw UsageError("--listen: " + inQuotedWord(options.address) +
                         " is not an IP address such as 127.0.0.1, 0.0.0.0 or ::1");
    return {address, options.port.value_or(usualPort), !options.port};
}

std::string httpToken(const HttpOptions& options) {
    if (options.tokenFile.empty()) return serve::randomToken();
    errno = 0;
    std::ifstream file(options.tokenFile);
    std::string token;
    if (!file || !std::getline(file, token))
        throw UsageError("--token-file: " + shownFile(options.tokenFile) +
                         " cannot be read: " + (errno != 0 ? std::strerror(errno) : "it is empty"));
    const bool isFit =
        token.size() >= fewestCharacters && token.size() <= mostCharacters &&
        token.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_") ==
            std::string::npos;
    if (!isFit)
        throw UsageError("--token-file: the first line of " + shownFile(options.tokenFile) +
                         " is not a token: 16 to 128 letters, digits, '-' and '_'");
    return token;
}

} // namespace appletctl
