/** The options of `serve` for its HTTP interface. */
#ifndef APPLETCTL_CLI_HTTP_OPTIONS_H
#define APPLETCTL_CLI_HTTP_OPTIONS_H

#include "appletctl/base/Options.h"
#include "serve/http/protocol/HttpTransport.h"

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace appletctl {

struct HttpOptions {
    bool isOff = false;                /**< --no-http */
    std::optional<int> port;           /**< --port */
    std::string address = "127.0.0.1"; /**< --listen */
    std::string tokenFile;             /**< --token-file; empty: a random token */
    bool maySet = false;               /**< --allow-set */

    /** True if it listens on all addresses of the machine. */
    bool isAnyAddress() const { return address == "0.0.0.0" || address == "::"; }
    /** True if it listens on another address than the loopback. */
    bool isRemote() const {
        return address != "localhost" && address != "::1" && !address.starts_with("127.");
    }
    /** True if the user wants HTTP, and not only has not said --no-http. */
    bool isAsked() const { return port || !tokenFile.empty() || address != "127.0.0.1"; }
};
void addHttpOptions(CLI::App& command, Options& options);

serve::HttpEndpoint httpEndpoint(const HttpOptions& options);
/** The first line of the file, or a random token. Throws UsageError for an unfit one. */
std::string httpToken(const HttpOptions& options);

} // namespace appletctl

#endif
