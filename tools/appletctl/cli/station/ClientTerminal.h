/** A client's terminal in place of the station's own. */
#ifndef APPLETCTL_CLI_CLIENTTERMINAL_H
#define APPLETCTL_CLI_CLIENTTERMINAL_H

#include "appletctl/base/applet_tools.h"
#include "serve/ClientMessage.h"

namespace appletctl {

/** In its scope, the standard streams, the working folder and the environment of this process are the client's.
 *  Scopes may be nested. No other thread may use the streams or the environment. */
class ClientTerminal {
public:
    explicit ClientTerminal(const serve::ClientCommand& command);
    ~ClientTerminal();
    ClientTerminal(const ClientTerminal&) = delete;
    ClientTerminal& operator=(const ClientTerminal&) = delete;

private:
    serve::ClientCommand m_before; // the settings to restore
};

} // namespace appletctl

#endif
