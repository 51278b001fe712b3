#include "device/board/station_file.h"

#include "base/Error.h"

#include <cstdlib>

namespace producer {

bool setUpStationFile(const Libraries&, applet_host::Session&) {
    const char* const file = std::getenv("VBOARD_STATION");
    if (file == nullptr || *file == '\0') return false;
    throw Error(GC_ERR_NOT_AVAILABLE,
                "VBOARD_STATION: this producer was built without station files: build it with the package "
                "nlohmann-json3-dev");
}

} // namespace producer
