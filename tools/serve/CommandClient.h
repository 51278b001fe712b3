/** The client's side of a station's socket. */
#ifndef SERVE_COMMANDCLIENT_H
#define SERVE_COMMANDCLIENT_H

#include "applet_tools/base/messages.h"
#include "serve/ClientMessage.h"
#include "serve/CommandSocket.h"
#include "serve/StationLocation.h"

#include <string>

namespace serve {

/** Connected from the constructor to the destructor. Each member throws Unavailable if the station ends, and
 *  Failure with the station's message if it refuses. */
class CommandClient {
public:
    /** Throws the exceptions of connectTo(). */
    explicit CommandClient(const StationLocation& location);

    /** Executes the command on the station, with the standard streams, the folder and the environment of this
     *  process. SIGINT, SIGTERM and SIGHUP interrupt the command; a second signal ends this process. */
    CommandEnd run(ClientCommand command);

    /** Requests the "status" or the "log"; returns that member of the answer. */
    nlohmann::json ask(const std::string& what);

    /** Asks the station to stop and waits for its end. */
    void stop();

private:
    nlohmann::json answerTo(const nlohmann::json& message, std::span<const int> descriptors);

    const std::string m_name;
    const applet_tools::Descriptor m_socket;
    applet_tools::MessageReader m_reader;
};

} // namespace serve

#endif
