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

/** The location of the station of that name; nothing is created. Throws UsageError for a name that is not made of 1 to
 *  32 letters, digits, '-', '_' and '.', with a letter or a digit first, and Failure when the path is too long for a
 *  socket. */
StationLocation locationOf(const std::string& name);

/** Makes the folder of the stations, with mode 0700. Throws Failure when it cannot be made, or belongs to someone else or
 *  is open to others. */
void makeStationFolder();

/** The names with a socket, sorted; running stations and those that were killed. */
std::vector<std::string> stationNames();

/** The names of running stations, sorted. */
std::vector<std::string> runningStations();

/** Makes the folder and locks the location for the lifetime of the descriptor. A station that was killed keeps its lock
 *  until its memory is freed; this is waited for. Throws Failure if one runs, or the lock file cannot be made. */
applet_tools::Descriptor lockStation(const StationLocation& location);

/** True when a running station holds the location. */
bool isRunning(const StationLocation& location);

/** A socket connected to the station. Throws Unavailable if no station of that name runs, with the names of
 *  the running ones. */
applet_tools::Descriptor connectTo(const StationLocation& location);

} // namespace serve

#endif
