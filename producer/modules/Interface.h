/** The interface module: a virtual board, or a served station, with its device. */
#ifndef PRODUCER_MODULES_INTERFACE_H
#define PRODUCER_MODULES_INTERFACE_H

#include "modules/Module.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

namespace producer {

class LocalDevice;
class System;

/** The caller must hold the lock of the modules, unless the function says otherwise. */
class Interface final : public Module, public std::enable_shared_from_this<Interface> {
public:
    /** `station`: name of a served one; empty for a board of this process. */
    Interface(std::shared_ptr<System> system, const std::string& id, std::string station);
    ~Interface() override;

    static Answer infoOf(const std::string& id, const std::string& station, std::int32_t command);
    Answer info(std::int32_t command) const { return infoOf(id(), m_station, command); }
    System& system() const { return *m_system; }

    /** Of the last update. */
    std::size_t deviceCount() const { return m_deviceCount; }
    /** Throws INVALID_INDEX. */
    const std::string& deviceId(std::uint32_t index) const;
    /** True if the list has changed. */
    bool updateDevices();
    /** Throws INVALID_ID. */
    Answer deviceInfo(const char* id, std::int32_t command) const;
    /** For the device, whether it is open or not. */
    Answer deviceInfo(std::int32_t command) const;

    // These may wait for another process, and take the locks themselves.

    /** Throws INVALID_ID, INVALID_PARAMETER, RESOURCE_IN_USE, INVALID_HANDLE, IO. */
    std::shared_ptr<LocalDevice> openDevice(const char* id, std::int32_t flags);
    /** Throws INVALID_HANDLE if it is not open. */
    void closeDevice(const LocalDevice& device);
    void stopThreads();
    /** Does nothing if it is closed already. */
    void close() override;

private:
    std::vector<Feature> makeFeatures() override;
    void requireDevice(const char* id) const;
    bool isPresent() const;
    std::int32_t status() const;
    void endDevice();

    const std::shared_ptr<System> m_system;
    const std::string m_station;
    const std::string m_deviceId;
    std::atomic<std::size_t> m_deviceCount{0};
    std::mutex m_deviceMutex; // held while the device is opened or closed; before the lock of the modules
    bool m_isClosed = false;  // guarded by m_deviceMutex, like m_device
    std::shared_ptr<LocalDevice> m_device;                              // null while closed
    std::atomic<std::int32_t> m_status{DEVICE_ACCESS_STATUS_READWRITE}; // of the device, if it is present
};

} // namespace producer

#endif
