/** Local sockets for processes of the same user. */
#ifndef SERVE_LOCAL_SOCKET_H
#define SERVE_LOCAL_SOCKET_H

#include "applet_tools/base/Descriptor.h"

#include <cstdint>
#include <filesystem>

namespace serve {

/** Listens at the path, with mode 0600, and replaces the socket of a killed station. `type`: SOCK_STREAM or
 *  SOCK_SEQPACKET. Throws Failure. */
applet_tools::Descriptor listenAt(const std::filesystem::path& path, int type);

/** Connects to the socket at the path; the result is empty if no process listens there. Throws Failure if no descriptors
 *  are left. */
applet_tools::Descriptor connectAt(const std::filesystem::path& path, int type);

/** Returns the id of the process at the other end; -1 if its user is neither this one nor root. */
std::int64_t allowedPeer(int socket);

/** Creates a descriptor that one thread makes readable to wake another one. Throws Failure. */
applet_tools::Descriptor wakingDescriptor();

} // namespace serve

#endif
