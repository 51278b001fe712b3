/** Diagnoses a missing picture. */
#ifndef APPLET_TOOLS_STATION_MISSING_PICTURE_H
#define APPLET_TOOLS_STATION_MISSING_PICTURE_H

#include "applet_tools/applet/timing/ticks.h"
#include "applet_tools/applet/values.h"
#include "applet_tools/base/words.h"
#include "applet_tools/station/StationFile.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace applet_tools {

/** Number of lines from the station's source since the board was opened. */
std::int64_t sourceLines(Instance& instance);

/** The time of the station and its counts, since the board was opened, at the start of a wait. */
struct WaitStart {
    Ticks tick = 0;
    std::int64_t lines = 0;           /**< sourceLines() */
    std::vector<std::int64_t> losses; /**< lossesOf() */
};
/** A wait that starts now. */
WaitStart waitStart(Instance& instance);

/** A wait without a picture, and how the user can extend it. */
struct PictureWait {
    WaitStart start;
    std::string longer; /**< "give a longer --timeout" */
    std::string wave;   /**< how to connect a wave: "a --wave" */
    const StationBelt* belt = nullptr;
    const StationCamera* camera = nullptr; /**< at the port, if that is known */
    /** sourceLines() when the last picture came, if that is known: then `start` may be later. */
    std::optional<std::int64_t> linesAtPicture{};
};

struct MissingPicture {
    std::string reason; /**< the most likely one, and what helps: "no line came: ..." */
    Words remedies;     /**< what the reason asks to set, if anything: "FG_EXSYNCON=FG_ON" */
};

/** The acquisition must still be running. */
MissingPicture whyNoPicture(Instance& instance, const ParameterList& parameters, const PictureWait& wait);

} // namespace applet_tools

#endif
