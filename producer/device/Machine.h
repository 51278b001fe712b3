/** The two kinds of device: a board in this process, or a station that another process serves. */
#ifndef PRODUCER_DEVICE_MACHINE_H
#define PRODUCER_DEVICE_MACHINE_H

#include "device/Acquisition.h"
#include "device/DeviceStation.h"
#include "device/Libraries.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace producer {

/** Callbacks of a machine, called by its thread. */
struct MachineListener {
    std::function<void(const EventKind&, std::uint64_t nanoseconds)> onEvent;
    /** The machine has ended: all accesses fail from now on. Called at most once. */
    std::function<void(const std::string& reason)> onLoss;
};

struct Machine {
    std::unique_ptr<DeviceStation> station;
    std::unique_ptr<Acquisition> acquisition; // last: its thread uses the station
};

/** Opens a board in this process with its own time (see board/Clock.h). Throws IO. */
Machine openBoard(const Libraries& libraries, const MachineListener& listener);

/** Opens the station of this name, which `appletctl serve` runs. Throws IO. */
Machine openServed(const std::string& name, const MachineListener& listener);
/** Returns the names of this user's running stations, sorted. */
std::vector<std::string> servedStations();
/** True if a station of this name is running. */
bool isServed(const std::string& name);

} // namespace producer

#endif
