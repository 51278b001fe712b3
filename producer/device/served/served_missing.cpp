#include "base/Error.h"
#include "device/Machine.h"

namespace producer {

Machine openServed(const std::string& name, const MachineListener&) {
    throw Error(GC_ERR_NOT_AVAILABLE,
                "the station '" + name +
                    "' cannot be opened: this producer was built without served stations: "
                    "build it with the package nlohmann-json3-dev");
}

std::vector<std::string> servedStations() { return {}; }

bool isServed(const std::string&) { return false; }

} // namespace producer
