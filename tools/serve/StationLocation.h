/** The files of a running station, found by its name. */
#ifndef SERVE_STATIONLOCATION_H
#define SERVE_STATIONLOCATION_H

#include "applet_tools/base/Descriptor.h"

#include <filesystem>
#include <string>
#include <vector>

namespace serve {

/** The files of a station, in a folder that only the user can read. */
struct StationLocation {
    std::string name;
    std::filesystem::path socket;  /**< listening socket for commands, mode 0600 */
    std::filesystem::path channel; /**< listening socket of the channel (see station_channel), mode 0600 */
    std::filesystem::path lock;    /**< locked while it runs, to detect a stale socket */
    std::filesystem::path log;     /**< output of a detached station */
};

/** The default name of a station. */
constexpr const char* defaultStationName = "main";

/** Returns the location of the station of this name; creates nothing. Throws UsageError unless the name has 1 to 32
 *  letters, digits, '-', '_' and '.', the first a letter or a digit, and Failure if the path is too long for a
 *  socket. */
StationLocation locationOf(const std::string& name);

/** Creates the folder of the stations, with mode 0700. Throws Failure if it cannot be created, belongs to another user or
 *  is accessible to others. */
void makeStationFolder();

/** Returns the names that have a socket, sorted: running stations, and those that were killed. */
std::vector<std::string> stationNames();

/** Returns the names of running stations, sorted. */
std::vector<std::string> runningStations();

/** Creates the folder and locks the location for the lifetime of the descriptor. A station that was killed holds its lock
 *  until its memory is freed; waits for that. Throws Failure if a station is running, or the lock file cannot be
 *  created. */
applet_tools::Descriptor lockStation(const StationLocation& location);

/** True if a running station holds the location. */
bool isRunning(const StationLocation& location);

/** Connects a socket to the station. Throws Unavailable if no station of this name is running, with the names of
 *  the running ones. */
applet_tools::Descriptor connectTo(const StationLocation& location);

} // namespace serve

#endif
