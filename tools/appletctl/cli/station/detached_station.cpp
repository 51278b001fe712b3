#include "appletctl/cli/station/detached_station.h"

#include "applet_tools/base/Interruption.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/words.h"
#include "appletctl/base/Report.h"
#include "serve/CommandClient.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <string_view>
#include <utility>
#include <vector>

namespace appletctl {
namespace {

using namespace applet_tools;

/** The command line of this process. */
Words ownCommandLine() {
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    Words words;
    for (std::string word; std::getline(file, word, '\0');)
        words.push_back(word);
    return words;
}

class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&m_actions); }
    ~FileActions() { posix_spawn_file_actions_destroy(&m_actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    posix_spawn_file_actions_t* get() { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions{};
};

class SpawnAttributes {
public:
    SpawnAttributes() { posix_spawnattr_init(&m_attributes); }
    ~SpawnAttributes() { posix_spawnattr_destroy(&m_attributes); }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    posix_spawnattr_t* get() { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes{};
};

pid_t spawn(Words words, const std::string& log) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    FileActions actions;
    posix_spawn_file_actions_addopen(actions.get(), STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(actions.get(), STDOUT_FILENO, log.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     S_IRUSR | S_IWUSR);
    posix_spawn_file_actions_adddup2(actions.get(), STDOUT_FILENO, STDERR_FILENO);
    SpawnAttributes attributes;
    posix_spawnattr_setflags(attributes.get(), POSIX_SPAWN_SETSID);
    pid_t process = -1;
    const int error =
        posix_spawn(&process, "/proc/self/exe", actions.get(), attributes.get(), arguments.data(), environ);
    if (error != 0) throw Failure(std::string("the station cannot be started: ") + std::strerror(error));
    return process;
}

/** Throws what the started process has printed, by its exit code. */
[[noreturn]] void throwReason(std::string reason, int exitCode) {
    const std::string_view prefix = "appletctl: ";
    if (reason.starts_with(prefix)) reason.erase(0, prefix.size());
    while (reason.ends_with('\n'))
        reason.pop_back();
    reason = "the station did not start: " + (reason.empty() ? "it gave no reason" : reason);
    if (exitCode == exitUsage) throw UsageError(reason);
    if (exitCode == exitUnavailable) throw Unavailable(reason);
    throw Failure(reason);
}

bool answers(const serve::StationLocation& location, pid_t process) {
    try {
        return serve::CommandClient(location).ask("status").at("process") == process;
    } catch (const Failure&) { // not yet
        return false;
    }
}

} // namespace

pid_t startDetached(const serve::StationLocation& location) {
    serve::lockStation(location); // throws if it runs; its log must not be lost
    Words words = ownCommandLine();
    std::erase(words, "--detach");
    const pid_t process = spawn(std::move(words), location.log);
    const Interruption interruption;
    while (!answers(location, process)) {
        using namespace std::chrono_literals;
        const bool goesOn = interruption.waitUntil(Interruption::Clock::now() + 20ms);
        if (!goesOn) kill(process, SIGTERM);
        int status = 0;
        if (waitpid(process, &status, goesOn ? WNOHANG : 0) == 0) continue;
        throwReason(textOfFile(location.log).value_or(""),
                    WIFEXITED(status) ? WEXITSTATUS(status) : exitRefused);
    }
    return process;
}

} // namespace appletctl
