#include "serve/ClientMessage.h"

namespace serve {

nlohmann::json asMessage(const ClientCommand& command) {
    return {
        {"protocol", protocolVersion}, {"do", command.kind == ClientCommand::Kind::line ? "line" : "command"},
        {"words", command.words},      {"line", command.line},
        {"prefix", command.prefix},    {"environment", command.environment}};
}

ClientCommand commandFrom(const nlohmann::json& message) {
    ClientCommand command;
    if (message.at("do").get<std::string>() == "line") command.kind = ClientCommand::Kind::line;
    message.at("words").get_to(command.words);
    message.at("line").get_to(command.line);
    message.at("prefix").get_to(command.prefix);
    message.at("environment").get_to(command.environment);
    return command;
}

} // namespace serve
