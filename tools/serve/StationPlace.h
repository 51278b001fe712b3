/** Where a running station is found by its name. */
#ifndef SERVE_STATIONPLACE_H
#define SERVE_STATIONPLACE_H

#include "applet_tools/base/Descriptor.h"

#include <filesystem>
#include <string>
#include <vector>

namespace serve {

/** The files of a station, in the folder that the user alone can read. */
struct StationPlace {
    std::string name;
    std::filesystem::path socket; /**< where it listens, mode 0600 */
    std::filesystem::path lock;   /**< locked as long as it runs, so that a stale socket is recognised */
    std::filesystem::path log;    /**< what it prints when it is detached */
};

/** The name of a station that was given none. */
constexpr const char* defaultStationName = "main";

/** The place of the station of that name; nothing is created. Throws UsageError for a name that is not made of 1 to 32
 *  letters, digits, '-', '_' and '.', with a letter or a digit first, and Failure when the path is too long for a
 *  socket. */
StationPlace placeOf(const std::string& name);

/** Makes the folder of the stations, with mode 0700. Throws Failure when it cannot be made, or belongs to someone else or
 *  is open to others. */
void makeStationFolder();

/** The names that have a socket, sorted; of stations that run and of those that were killed. */
std::vector<std::string> stationNames();

/** Locks the place for the life of the descriptor; none when a running station holds it. Throws Failure when the lock file
 *  cannot be made. */
applet_tools::Descriptor lockPlace(const StationPlace& place);

/** True when a running station holds the place. */
bool isRunning(const StationPlace& place);

/** A socket that is connected to the station. Throws Unavailable when none of that name runs, saying how to start one and
 *  which do run. */
applet_tools::Descriptor connectTo(const StationPlace& place);

} // namespace serve

#endif
