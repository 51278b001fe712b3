/** A station in the background. */
#ifndef APPLETCTL_CLI_DETACHED_STATION_H
#define APPLETCTL_CLI_DETACHED_STATION_H

#include "serve/StationPlace.h"

#include <sys/types.h>

namespace appletctl {

/** Starts this process's command line again, without --detach and in a new session; its output goes to the
 *  log of the place. Returns the process id once it answers as a station. Throws Failure with its output if
 *  it ends before. */
pid_t startDetached(const serve::StationPlace& place);

} // namespace appletctl

#endif
