/** A station in the background. */
#ifndef APPLETCTL_CLI_DETACHED_STATION_H
#define APPLETCTL_CLI_DETACHED_STATION_H

#include "serve/StationPlace.h"

#include <sys/types.h>

namespace appletctl {

/** Starts the command line of this process once more, without --detach, in a session of its own; what it prints goes to the
 *  log of the place. Gives its process when it answers as a station. Throws Failure with its words when it ends before. */
pid_t startDetached(const serve::StationPlace& place);

} // namespace appletctl

#endif
