#include "device/board/station_file.h"

#include "applet_tools/applet/Instance.h"
#include "applet_tools/applet/ParameterList.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/station/StationFile.h"
#include "base/Error.h"

namespace producer {

bool setUpStationFile(const Libraries& libraries, applet_host::Session& session) {
    try {
        auto file = applet_tools::stationOfEnvironment();
        if (!file) return false;
        file->clock.reset(); // the producer has its own: VBOARD_CLOCK
        applet_tools::Instance instance(libraries, session);
        setUpStation(instance, applet_tools::ParameterList(instance), *file);
        return true;
    } catch (const applet_tools::UsageError& error) {
        throw Error(GC_ERR_INVALID_VALUE, error.what());
    } catch (const applet_tools::Failure& error) {
        throw Error(GC_ERR_IO, error.what());
    }
}

} // namespace producer
