/** The machine around a board, as the file says that the environment variable VBOARD_STATION names. */
#ifndef PRODUCER_DEVICE_STATION_FILE_H
#define PRODUCER_DEVICE_STATION_FILE_H

#include "device/Libraries.h"

namespace producer {

/** Sets it up; false if the variable names no file. Throws INVALID_VALUE for what is wrong in the file, and IO for a
 *  parameter that the applet refuses. */
bool setUpStationFile(const Libraries& libraries, applet_host::Session& session);

} // namespace producer

#endif
