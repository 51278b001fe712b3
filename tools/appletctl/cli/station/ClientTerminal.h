/** A client's terminal in place of the station's own. */
#ifndef APPLETCTL_CLI_CLIENTTERMINAL_H
#define APPLETCTL_CLI_CLIENTTERMINAL_H

#include "appletctl/base/applet_tools.h"
#include "serve/ClientMessage.h"

namespace appletctl {

/** Reserves space in the environment for all variables of a client's terminal, so that they can be changed later
 *  while other threads read theirs. */
void prepareClientTerminals();

/** In its scope, the standard streams, the working folder and the environment of this process are the client's.
 *  Scopes may be nested. Only one thread may use the streams. */
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
