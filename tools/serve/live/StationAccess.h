/** Data and functions of a running station for its interfaces. */
#ifndef SERVE_LIVE_STATIONACCESS_H
#define SERVE_LIVE_STATIONACCESS_H

#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/station/StationFile.h"

#include <functional>
#include <optional>
#include <string>

namespace serve {

struct StationAccess {
    std::string name;
    std::string version; /**< of the program */
    std::string board;   /**< "virtual", "system", "none" */
    double clock =
        1; /**< speed of a virtual board's time relative to the machine's; 0: its time is stepped */
    bool maySet = false;                                /**< --allow-set */
    std::optional<applet_tools::StationFile> station{}; /**< camera, belt and scene at its start */
    std::function<void()> wake;                         /**< makes the command thread execute queued work */
    applet_tools::LiveSession* live = nullptr;          /**< for the command thread */
    /** For the command thread: executes the work as a step that "undo" reverts, with this text in the station's log.
     *  Passes exceptions on. */
    std::function<void(const std::string& text, const std::function<void()>& work)> change;
};

} // namespace serve

#endif
