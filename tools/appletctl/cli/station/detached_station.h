/** A station in the background. */
#ifndef APPLETCTL_CLI_DETACHED_STATION_H
#define APPLETCTL_CLI_DETACHED_STATION_H

#include "serve/StationLocation.h"

#include <sys/types.h>

namespace appletctl {

/** Starts this process's command line again, without --detach and in a new session; its output goes to the
 *  log of the location. Returns the process id once it answers as a station. Throws Failure with its output if
 *  it ends before. */
pid_t startDetached(const serve::StationLocation& location);

} // namespace appletctl

#endif
