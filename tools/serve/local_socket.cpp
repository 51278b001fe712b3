#include "serve/local_socket.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"

#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace serve {
namespace {

using applet_tools::Descriptor;
using applet_tools::Failure;

sockaddr_un addressOf(const std::filesystem::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    return address;
}

} // namespace

Descriptor listenAt(const std::filesystem::path& path, int type) {
    Descriptor socket(::socket(AF_UNIX, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const sockaddr_un address = addressOf(path);
    unlink(path.c_str());
    constexpr int backlog = 16;
    if (!socket || bind(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        chmod(path.c_str(), S_IRUSR | S_IWUSR) != 0 || listen(socket.number(), backlog) != 0)
        throw Failure("the socket " + applet_tools::inQuotes(path.native()) +
                      " cannot be created: " + std::strerror(errno));
    return socket;
}

Descriptor connectAt(const std::filesystem::path& path, int type) {
    Descriptor socket(::socket(AF_UNIX, type | SOCK_CLOEXEC, 0));
    if (!socket) throw Failure(std::string("no socket can be created: ") + std::strerror(errno));
    const sockaddr_un address = addressOf(path);
    const bool isConnected =
        connect(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    return isConnected ? std::move(socket) : Descriptor();
}

std::int64_t allowedPeer(int socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    if (getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) return -1;
    return peer.uid == getuid() || peer.uid == 0 ? peer.pid : -1;
}

Descriptor wakingDescriptor() {
    Descriptor made(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!made) throw Failure(std::string("no event descriptor can be created: ") + std::strerror(errno));
    return made;
}

} // namespace serve
