#include "modules/Interface.h"

#include "base/Error.h"
#include "modules/LocalDevice.h"
#include "modules/System.h"

#include <utility>

namespace producer {
namespace {

constexpr const char* interfaceInformation = "InterfaceInformation";
constexpr const char* deviceEnumeration = "DeviceEnumeration";
constexpr std::uint64_t timestampFrequency = 1'000'000'000;

} // namespace

Interface::Interface(std::shared_ptr<System> system, const std::string& id, std::string station)
    : Module("TLInterface", "TLInterface", id)
    , m_system(std::move(system))
    , m_station(std::move(station))
    , m_deviceId(id + "-process-0") {}

Interface::~Interface() = default;

Answer Interface::infoOf(const std::string& id, const std::string& station, std::int32_t command) {
    switch (command) {
    case INTERFACE_INFO_ID:
        return Answer::text(id);
    case INTERFACE_INFO_DISPLAYNAME:
        return Answer::text(station.empty() ? "Virtual board " + id : "Station " + station);
    case INTERFACE_INFO_TLTYPE:
        return Answer::text(transportType);
    default:
        refuseCommand("an interface", command);
    }
}

bool Interface::isPresent() const { return m_station.empty() || isServed(m_station); }

bool Interface::updateDevices() {
    const std::size_t count = isPresent() ? 1 : 0;
    return m_deviceCount.exchange(count) != count;
}

std::int32_t Interface::status() const {
    const std::int32_t status = m_status;
    const bool isClosed = status == DEVICE_ACCESS_STATUS_READWRITE;
    return isClosed && !isPresent() ? DEVICE_ACCESS_STATUS_NOACCESS : status;
}

const std::string& Interface::deviceId(std::uint32_t index) const {
    if (index < deviceCount()) return m_deviceId;
    throw Error(GC_ERR_INVALID_INDEX, "there is no device " + std::to_string(index) +
                                          " in the list, which has " + std::to_string(deviceCount()) +
                                          " after the last update");
}

void Interface::requireDevice(const char* id) const {
    required(id, "id");
    if (m_deviceId != id)
        throw Error(GC_ERR_INVALID_ID, "there is no device \"" + std::string(id) + "\" on " + this->id());
}

Answer Interface::deviceInfo(const char* id, std::int32_t command) const {
    requireDevice(id);
    return deviceInfo(command);
}

Answer Interface::deviceInfo(std::int32_t command) const {
    switch (command) {
    case DEVICE_INFO_ID:
    case DEVICE_INFO_SERIAL_NUMBER:
        return Answer::text(m_deviceId);
    case DEVICE_INFO_VENDOR:
        return Answer::text(vendorName);
    case DEVICE_INFO_MODEL:
        return Answer::text(modelName);
    case DEVICE_INFO_TLTYPE:
        return Answer::text(transportType);
    case DEVICE_INFO_DISPLAYNAME:
        return Answer::text(std::string(modelName) + " on " + id());
    case DEVICE_INFO_ACCESS_STATUS:
        return Answer::int32(status());
    case DEVICE_INFO_USER_DEFINED_NAME:
        if (m_station.empty()) refuseForNow("a device has no name of the user's");
        return Answer::text(m_station);
    case DEVICE_INFO_VERSION:
        return Answer::text(producerVersion);
    case DEVICE_INFO_TIMESTAMP_FREQUENCY:
        return Answer::uint64(timestampFrequency);
    default:
        refuseCommand("a device", command);
    }
}

std::shared_ptr<LocalDevice> Interface::openDevice(const char* id, std::int32_t flags) {
    const std::lock_guard lock(m_deviceMutex);
    if (m_isClosed) throw Error(GC_ERR_INVALID_HANDLE, "the interface was closed");
    requireDevice(id);
    if (flags < DEVICE_ACCESS_READONLY || flags > DEVICE_ACCESS_EXCLUSIVE)
        throw Error(GC_ERR_INVALID_PARAMETER, "a device can be opened with the flags 2, 3 or 4");
    if (m_device != nullptr)
        throw Error(GC_ERR_RESOURCE_IN_USE, "the device " + m_deviceId + " is open already");
    const bool isReadOnly = flags == DEVICE_ACCESS_READONLY;
    const auto openMachine = [this](const MachineListener& listener) {
        if (!m_station.empty()) return openServed(m_station, listener);
        const std::lock_guard modules(lockOfModules());
        return openBoard(m_system->libraries(), listener);
    };
    m_device = LocalDevice::open(shared_from_this(), openMachine, m_deviceId, isReadOnly);
    m_status = isReadOnly ? DEVICE_ACCESS_STATUS_OPEN_READONLY : DEVICE_ACCESS_STATUS_OPEN_READWRITE;
    return m_device;
}

void Interface::endDevice() {
    m_device->close();
    m_device.reset();
    m_status = DEVICE_ACCESS_STATUS_READWRITE;
}

void Interface::closeDevice(const LocalDevice& device) {
    const std::lock_guard lock(m_deviceMutex);
    if (m_device.get() != &device) throw Error(GC_ERR_INVALID_HANDLE, "the device was closed");
    endDevice();
}

void Interface::stopThreads() {
    const std::lock_guard lock(m_deviceMutex);
    if (m_device != nullptr) m_device->stopThread();
}

void Interface::close() {
    const std::lock_guard lock(m_deviceMutex);
    if (std::exchange(m_isClosed, true)) return;
    if (m_device != nullptr) endDevice();
    const std::lock_guard modules(lockOfModules());
    Module::close();
    m_system->forget(*this);
}

std::vector<Feature> Interface::makeFeatures() {
    Feature update{.name = "DeviceUpdateList", .category = deviceEnumeration, .kind = Feature::Kind::command};
    update.get = [] { return std::int64_t{0}; };
    update.set = [this](const Value&) { updateDevices(); };
    Feature access = wordFeature(deviceEnumeration, "DeviceAccessStatus", "Unknown");
    access.entries = {{"Unknown", DEVICE_ACCESS_STATUS_UNKNOWN},
                      {"ReadWrite", DEVICE_ACCESS_STATUS_READWRITE},
                      {"NoAccess", DEVICE_ACCESS_STATUS_NOACCESS},
                      {"OpenReadWrite", DEVICE_ACCESS_STATUS_OPEN_READWRITE},
                      {"OpenReadOnly", DEVICE_ACCESS_STATUS_OPEN_READONLY}};
    access.get = [this] { return std::int64_t{status()}; };
    return {
        textFeature(interfaceInformation, "InterfaceID", id()),
        wordFeature(interfaceInformation, "InterfaceType", transportType),
        update,
        selectorFeature(deviceEnumeration, "DeviceSelector", [this] { return deviceCount(); },
                        {"DeviceID", "DeviceVendorName", "DeviceModelName", "DeviceAccessStatus"}),
        textFeature(deviceEnumeration, "DeviceID", [this] { return deviceCount() > 0 ? m_deviceId : ""; }),
        textFeature(deviceEnumeration, "DeviceVendorName", vendorName),
        textFeature(deviceEnumeration, "DeviceModelName", modelName),
        access};
}

} // namespace producer
