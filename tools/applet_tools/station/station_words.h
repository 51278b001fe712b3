/** Parses camera, belt and scene in a scenario's step. All throw UsageError. */
#ifndef APPLET_TOOLS_STATION_STATION_WORDS_H
#define APPLET_TOOLS_STATION_STATION_WORDS_H

#include "applet_tools/base/words.h"
#include "applet_tools/station/StationFile.h"

namespace applet_tools {

/** "WIDTH [exposure TIME] [rate HZ]". */
StationCamera cameraFromWords(const Words& words);
/** "SPEED[..SPEED][/TIME][,...] [encoder INPUT,INPUT STEP] [barrier INPUT AHEAD]", speeds in mm/s. */
StationBelt beltFromWords(const Words& words);
/** "chart|FILE [pixel LENGTH] [object PLACE,LENGTH]...". */
StationScene sceneFromWords(const Words& words);

} // namespace applet_tools

#endif
