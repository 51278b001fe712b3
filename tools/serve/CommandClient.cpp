#include "serve/CommandClient.h"

#include "applet_tools/base/Interruption.h"
#include "applet_tools/base/errors.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace serve {

using applet_tools::Descriptor;
using nlohmann::json;

CommandClient::CommandClient(const StationLocation& location)
    : m_name(location.name)
    , m_socket(connectTo(location))
    , m_reader(m_socket.number()) {}

json CommandClient::answerTo(const json& message, std::span<const int> descriptors) {
    applet_tools::Interruption interruption;
    std::optional<json> answer;
    if (applet_tools::sendMessage(m_socket.number(), message, descriptors)) {
        if (!interruption.waitReadable(m_socket.number()))
            applet_tools::sendMessage(m_socket.number(),
                                      {{"protocol", protocolVersion}, {"do", "interrupt"}});
        answer = m_reader.wait();
    }
    if (!answer) throw applet_tools::Unavailable("the station '" + m_name + "' has ended before it answered");
    if (answer->contains("refused")) throw applet_tools::Failure(answer->at("refused").get<std::string>());
    return *std::move(answer);
}

CommandEnd CommandClient::run(ClientCommand command) {
    for (const char* variable : clientVariables) {
        if (const char* const value = std::getenv(variable)) command.environment[variable] = value;
    }
    const Descriptor folder(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder)
        throw applet_tools::Failure(std::string("the working folder cannot be opened: ") +
                                    std::strerror(errno));
    const int files[clientFiles] = {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO, folder.number()};
    const json answer = answerTo(asMessage(command), files);
    return {answer.at("exit").get<int>(), answer.at("over").get<bool>()};
}

json CommandClient::ask(const std::string& what) {
    return answerTo({{"protocol", protocolVersion}, {"do", what}}, {}).at(what);
}

void CommandClient::stop() {
    answerTo({{"protocol", protocolVersion}, {"do", "stop"}}, {});
    while (m_reader.wait()) {
    } // the station closes the socket at its end
}

} // namespace serve
