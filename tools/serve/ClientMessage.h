/** Messages between a client and a station on the socket. */
#ifndef SERVE_CLIENTMESSAGE_H
#define SERVE_CLIENTMESSAGE_H

#include "applet_tools/base/Descriptor.h"
#include "applet_tools/base/words.h"

#include <nlohmann/json.hpp>

#include <array>
#include <map>
#include <string>
#include <vector>

namespace serve {

/** Protocol version: both sides must have the same. */
constexpr int protocolVersion = 1;

/** The standard streams of the client and its working folder, in this order. */
constexpr std::size_t clientFiles = 4;

/** Environment variables of the client that affect its output. A message contains those that are set. */
constexpr std::array<const char*, 6> clientVariables = {"TERM",   "COLUMNS",  "NO_COLOR",
                                                        "LC_ALL", "LC_CTYPE", "LANG"};

/** A command line that a client sends, with its terminal. */
struct ClientCommand {
    enum class Kind {
        commandLine, /**< `words` are a whole command line */
        line         /**< `line` is one of a shell, and `words` are the command line of that shell */
    };
    Kind kind = Kind::commandLine;
    applet_tools::Words words;
    std::string line;
    std::string prefix; /**< precedes the problems of a line: "line 3: " */
    std::map<std::string, std::string> environment;
    std::vector<applet_tools::Descriptor>
        files; /**< at the station: the client's files, clientFiles of them */
};

nlohmann::json asMessage(const ClientCommand& command);
/** Parses a message; sets no files. Throws nlohmann::json::exception for an invalid message. */
ClientCommand commandFrom(const nlohmann::json& message);

} // namespace serve

#endif
