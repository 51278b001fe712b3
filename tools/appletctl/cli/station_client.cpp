#include "appletctl/cli/station_client.h"

#include "applet_tools/base/errors.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/shared_options.h"

namespace appletctl {
namespace {

/** The shell's command line for these output options. */
Words shellWords(const Options& options) {
    Words words = {"shell", "--color", options.colour};
    const auto add = [&](bool isWanted, const char* word) {
        if (isWanted) words.emplace_back(word);
    };
    add(options.json, "--json");
    add(options.plain, "--plain");
    add(options.quiet, "--quiet");
    add(options.verbose, "--verbose");
    add(options.of<YesOption>().isGiven, "--yes");
    return words;
}

serve::CommandClient clientOf(const std::string& name) {
    const serve::StationLocation location = serve::locationOf(name);
    try {
        return serve::CommandClient(location);
    } catch (const Unavailable& error) {
        throw Unavailable(std::string(error.what()) + ": start it with 'appletctl serve " + name +
                          "', or leave --station and APPLETCTL_STATION out");
    }
}

} // namespace

bool isForStation(const Request& request) {
    return !request.options.station.empty() && request.command != nullptr &&
           request.command->kind != Command::Kind::local;
}

StationClient::StationClient(const std::string& name) : m_client(clientOf(name)) {}

serve::CommandEnd StationClient::runCommandLine(const Words& words) {
    serve::ClientCommand command;
    command.words = words;
    return m_client.run(std::move(command));
}

serve::CommandEnd StationClient::runLine(const std::string& line, const Options& options,
                                         const std::string& prefix) {
    serve::ClientCommand command;
    command.kind = serve::ClientCommand::Kind::line;
    command.words = shellWords(options);
    command.line = line;
    command.prefix = prefix;
    return m_client.run(std::move(command));
}

} // namespace appletctl
