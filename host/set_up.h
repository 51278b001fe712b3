/** Station files. */
#ifndef HOST_SET_UP_H
#define HOST_SET_UP_H

#include "applet_tools/station/StationFile.h"
#include "host/Station.h"

#include <string>

namespace host {

/** Throws Error if the file cannot be read or has a wrong field. */
applet_tools::StationFile readStation(const std::string& file);

/** Connects the virtual board and sets the parameters. Throws Error. */
void setUp(vexo_station& station, const applet_tools::StationFile& file);

} // namespace host

#endif
