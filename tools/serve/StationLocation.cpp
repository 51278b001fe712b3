#include "serve/StationLocation.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "serve/local_socket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace serve {
namespace {

namespace fs = std::filesystem;
using applet_tools::Descriptor;
using applet_tools::Failure;

/** The user's runtime directory, or, if there is none, a directory of the user in the temporary folder. */
fs::path stationFolder() {
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime != nullptr && *runtime == '/') return fs::path(runtime) / "appletctl";
    return "/tmp/appletctl-" + std::to_string(getuid());
}

bool isAlphanumeric(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; }

bool isStationName(const std::string& name) {
    constexpr std::size_t mostCharacters = 32;
    return !name.empty() && name.size() <= mostCharacters && isAlphanumeric(name.front()) &&
           std::ranges::all_of(name,
                               [](char c) { return isAlphanumeric(c) || std::strchr("-_.", c) != nullptr; });
}

/** A lock on the whole file, owned by the open file description, so that testing it does not acquire it. */
struct flock wholeFile() {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

std::string runningNames() {
    const std::vector<std::string> names = runningStations();
    return names.empty() ? "no station runs" : "running: " + applet_tools::join(names, ", ");
}

} // namespace

StationLocation locationOf(const std::string& name) {
    if (!isStationName(name))
        throw applet_tools::UsageError(
            applet_tools::inQuotedWord(name) +
            " is not a name of a station: 1 to 32 letters, digits, '-', '_' and '.', "
            "beginning with a letter or a digit");
    const fs::path folder = stationFolder();
    StationLocation location{name, folder / (name + ".socket"), folder / (name + ".channel"),
                             folder / (name + ".lock"), folder / (name + ".log")};
    if (location.channel.native().size() >= sizeof sockaddr_un::sun_path)
        throw Failure("the socket " + applet_tools::inQuotes(location.channel.native()) + " has a path of " +
                      std::to_string(location.channel.native().size()) + " bytes, and the system takes " +
                      std::to_string(sizeof sockaddr_un::sun_path - 1) +
                      ": set XDG_RUNTIME_DIR to a shorter folder");
    return location;
}

void makeStationFolder() {
    const fs::path folder = stationFolder();
    const std::string shown = applet_tools::inQuotes(folder.native());
    if (mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST)
        throw Failure("the folder " + shown + " cannot be created: " + std::strerror(errno));
    struct stat status {};
    if (lstat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != getuid())
        throw Failure("the folder " + shown + " for the sockets of stations is not one of this user's");
    if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        throw Failure("the folder " + shown + " is open to other users: make it private, chmod 700");
}

std::vector<std::string> stationNames() {
    std::vector<std::string> names;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(stationFolder(), error))
        if (entry.path().extension() == ".socket" && isStationName(entry.path().stem()))
            names.push_back(entry.path().stem());
    std::ranges::sort(names);
    return names;
}

std::vector<std::string> runningStations() {
    std::vector<std::string> names = stationNames();
    std::erase_if(names, [](const std::string& name) { return !isRunning(locationOf(name)); });
    return names;
}

Descriptor lockStation(const StationLocation& location) {
    constexpr std::chrono::seconds longestEnd(5);
    makeStationFolder();
    Descriptor lock(
        open(location.lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
    if (!lock)
        throw Failure(applet_tools::inQuotes(location.lock.native()) +
                      " cannot be made: " + std::strerror(errno));
    const auto due = std::chrono::steady_clock::now() + longestEnd;
    struct flock whole = wholeFile();
    while (fcntl(lock.number(), F_OFD_SETLK, &whole) != 0) {
        if (std::chrono::steady_clock::now() >= due || connectAt(location.socket, SOCK_STREAM))
            throw Failure("a station '" + location.name +
                          "' runs already: give another name, or end it with 'appletctl station stop " +
                          location.name + "'");
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return lock;
}

bool isRunning(const StationLocation& location) {
    const Descriptor lock(open(location.lock.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
    struct flock whole = wholeFile();
    return lock && fcntl(lock.number(), F_OFD_GETLK, &whole) == 0 && whole.l_type != F_UNLCK;
}

Descriptor connectTo(const StationLocation& location) {
    if (Descriptor socket = connectAt(location.socket, SOCK_STREAM)) return socket;
    throw applet_tools::Unavailable("there is no station '" + location.name + "' (" + runningNames() + ")");
}

} // namespace serve
