/** Sets up a board from the station file named by VBOARD_STATION. */
#ifndef PRODUCER_DEVICE_STATION_FILE_H
#define PRODUCER_DEVICE_STATION_FILE_H

#include "device/Libraries.h"

namespace producer {

/** Sets up the board; returns false if the variable names no file. Throws INVALID_VALUE for an error in the file, and
 *  IO for a parameter that the applet refuses. */
bool setUpStationFile(const Libraries& libraries, applet_host::Session& session);

} // namespace producer

#endif
