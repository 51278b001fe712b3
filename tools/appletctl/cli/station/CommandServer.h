/** Executes the commands of a station's clients. */
#ifndef APPLETCTL_CLI_STATION_COMMANDSERVER_H
#define APPLETCTL_CLI_STATION_COMMANDSERVER_H

#include "applet_tools/base/Interruption.h"
#include "appletctl/cli/shell/LineSession.h"
#include "serve/CommandSocket.h"
#include "serve/channel/ChannelServer.h"
#include "serve/http/StationHttp.h"

#include <functional>
#include <optional>
#include <string>

namespace appletctl {

/** Executes the commands of clients one at a time, and the work of the station's other interfaces between them. */
class CommandServer {
public:
    /** `clock`: how many times as fast as the machine's clock time passes; 0: it is stepped. Throws as
     *  CommandSocket and StationHttp do. */
    CommandServer(Context& context, const serve::StationLocation& location,
                  const std::optional<StationFile>& file, double clock);
    ~CommandServer() { m_context.setPause({}); }
    CommandServer(const CommandServer&) = delete;
    CommandServer& operator=(const CommandServer&) = delete;

    /** The address of the page with its token; empty without HTTP. */
    std::string address() const { return m_http ? m_http->address(true) : ""; }

    /** Runs until a client or a signal ends it. */
    void run();

private:
    serve::StationAccess access(const std::string& name, const std::optional<StationFile>& file);
    void openHttp();
    bool waitForWork();
    void change(const std::string& text, const std::function<void()>& work);
    void setClock();
    Instance* virtualInstance();
    void lookMeanwhile();
    bool isQuickLook(const serve::ClientCommand& command, Request& request) const;
    /** True if the client has interrupted it. */
    bool execute(const serve::ClientCommand& command, const std::function<serve::CommandEnd()>& work);
    serve::CommandEnd run(const serve::ClientCommand& command);

    Context& m_context;
    const Options m_shown; // for the station's own output
    const double m_clock;
    Options m_options; // defaults for a client's command line
    LineSession m_session;
    Interruption m_interruption;
    bool m_isPaused = false;
    serve::CommandSocket m_socket;
    serve::LiveStation m_live;
    // Last: their threads use the other members.
    std::optional<serve::StationHttp> m_http;
    std::optional<serve::ChannelServer> m_channel;
};

} // namespace appletctl

#endif
