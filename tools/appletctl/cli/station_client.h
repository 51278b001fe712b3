/** Sends command lines to a running station. */
#ifndef APPLETCTL_CLI_STATION_CLIENT_H
#define APPLETCTL_CLI_STATION_CLIENT_H

#include "appletctl/cli/command_line.h"
#include "serve/CommandClient.h"

#include <string>

namespace appletctl {

/** True when the request is for a running station and not for this process. */
bool isForStation(const Request& request);

/** Connects to the station of that name. Throws the exceptions of serve::CommandClient. */
class StationClient {
public:
    explicit StationClient(const std::string& name);

    /** Has the station execute a whole command line; it prints to the streams of this process. */
    serve::CommandEnd runCommandLine(const Words& words);
    /** The same for a line of a shell with these options. */
    serve::CommandEnd runLine(const std::string& line, const Options& options, const std::string& prefix);

private:
    serve::CommandClient m_client;
};

} // namespace appletctl

#endif
