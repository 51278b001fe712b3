#include "device/Machine.h"
#include "device/board/BoardAcquisition.h"
#include "device/board/BoardStation.h"

namespace producer {

Machine openBoard(const Libraries& libraries, const MachineListener& listener) {
    auto station = std::make_unique<BoardStation>(libraries);
    auto acquisition = std::make_unique<BoardAcquisition>(*station, Clock::chosen(), listener.onEvent);
    return {std::move(station), std::move(acquisition)};
}

} // namespace producer
