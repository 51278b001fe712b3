#include "applet_tools/base/errors.h"
#include "device/Machine.h"
#include "device/served/ServedAcquisition.h"
#include "device/served/ServedStation.h"
#include "serve/StationLocation.h"

#include <algorithm>

namespace producer {

Machine openServed(const std::string& name, const MachineListener& listener) {
    auto station = std::make_unique<ServedStation>(name);
    auto acquisition = std::make_unique<ServedAcquisition>(*station, listener);
    return {std::move(station), std::move(acquisition)};
}

std::vector<std::string> servedStations() { return serve::runningStations(); }

bool isServed(const std::string& name) {
    const std::vector<std::string> running = servedStations();
    return std::ranges::find(running, name) != running.end();
}

} // namespace producer
