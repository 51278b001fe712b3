/** Local sockets for processes of the same user. */
#ifndef SERVE_LOCAL_SOCKET_H
#define SERVE_LOCAL_SOCKET_H

#include "applet_tools/base/Descriptor.h"

#include <cstdint>
#include <filesystem>

namespace serve {

/** Listens at the path, with mode 0600, and replaces what a killed station has left there. `type`: SOCK_STREAM or
 *  SOCK_SEQPACKET. Throws Failure. */
applet_tools::Descriptor listenAt(const std::filesystem::path& path, int type);

/** A connection to the socket at the path; none if nobody listens there. Throws Failure if there are no descriptors
 *  left. */
applet_tools::Descriptor connectAt(const std::filesystem::path& path, int type);

/** The process at the other end; -1 if its user is neither this one nor root. */
std::int64_t allowedPeer(int socket);

/** A descriptor that one thread makes readable to wake another one. Throws Failure. */
applet_tools::Descriptor wakingDescriptor();

} // namespace serve

#endif
