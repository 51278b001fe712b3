/** What the HTTP interface needs of a running station. */
#ifndef SERVE_HTTP_STATE_STATIONACCESS_H
#define SERVE_HTTP_STATE_STATIONACCESS_H

#include "applet_tools/scratch/LiveSession.h"
#include "applet_tools/station/StationFile.h"
#include "serve/http/state/CommandThread.h"
#include "serve/http/state/LivePictures.h"

#include <functional>
#include <optional>
#include <string>

namespace serve {

struct StationAccess {
    std::string name;
    std::string version;     /**< of the program */
    std::string board;       /**< "virtual", "system", "none" */
    bool isWallClock = true; /**< of a virtual board; else its time is stepped */
    double factor = 1;
    bool maySet = false;                                /**< --allow-set */
    std::optional<applet_tools::StationFile> station{}; /**< camera, belt and scene at its start */
    std::function<void()> wake;                         /**< makes the command thread execute what waits */
    applet_tools::LiveSession* live = nullptr;          /**< for the command thread */
    /** For the command thread: executes the work as a step that "undo" reverts, with this text in the station's log.
     *  Passes exceptions on. */
    std::function<void(const std::string& text, const std::function<void()>& work)> change;
};

} // namespace serve

#endif
