#include "appletctl/cli/station/ClientTerminal.h"

#include "applet_tools/base/errors.h"

#include <fcntl.h>
#include <stdio_ext.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>

namespace appletctl {
namespace {

constexpr int streams[] = {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO};
constexpr std::size_t folderIndex = 3;

/** Flushes the buffers, so that nothing of one client's streams is left for the next. */
void emptyStreams() {
    std::cout.flush();
    std::cerr.flush();
    std::fflush(stdout);
    std::fflush(stderr);
    __fpurge(stdin);
    std::clearerr(stdin);
    for (std::ios* stream : {static_cast<std::ios*>(&std::cin), static_cast<std::ios*>(&std::cout),
                             static_cast<std::ios*>(&std::cerr)})
        stream->clear();
}

void become(const serve::ClientCommand& command) {
    emptyStreams();
    for (const int stream : streams)
        dup2(command.files[static_cast<std::size_t>(stream)].number(), stream);
    if (fchdir(command.files[folderIndex].number()) != 0)
        throw Failure(std::string("the client's working folder cannot be opened: ") + std::strerror(errno));
    for (const char* name : serve::clientVariables) {
        const auto found = command.environment.find(name);
        if (found != command.environment.end())
            setenv(name, found->second.c_str(), 1);
        else
            unsetenv(name);
    }
}

/** The present streams, folder and environment. */
serve::ClientCommand present() {
    serve::ClientCommand now;
    for (const int stream : streams)
        now.files.emplace_back(fcntl(stream, F_DUPFD_CLOEXEC, 0));
    now.files.emplace_back(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    for (const auto& file : now.files)
        if (!file) throw Failure(std::string("the terminal cannot be handed over: ") + std::strerror(errno));
    for (const char* name : serve::clientVariables)
        if (const char* const value = std::getenv(name)) now.environment[name] = value;
    return now;
}

} // namespace

ClientTerminal::ClientTerminal(const serve::ClientCommand& command) : m_before(present()) {
    try {
        become(command);
    } catch (...) {
        become(m_before);
        throw;
    }
}

ClientTerminal::~ClientTerminal() {
    try {
        become(m_before);
    } catch (const std::exception&) { // the folder was removed: file names are absolute from here on
    }
}

} // namespace appletctl
