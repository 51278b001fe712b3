#include "modules/LocalDevice.h"

#include "base/Error.h"
#include "device/parameter_features.h"
#include "modules/Interface.h"
#include "modules/Stream.h"
#include "modules/System.h"

namespace producer {
namespace {

constexpr const char* deviceInformation = "DeviceInformation";
constexpr const char* streamEnumeration = "StreamEnumeration";
constexpr std::size_t longestName = 64;
constexpr std::size_t longestReason = 256;

/** Mask and time of an event, in the layout of the description. */
std::string bytesOf(std::uint64_t mask, std::uint64_t nanoseconds) {
    const std::uint64_t words[] = {mask, nanoseconds};
    return {reinterpret_cast<const char*>(words), sizeof words};
}

std::string errorData(GC_ERROR code, const std::string& reason) {
    std::string data(reinterpret_cast<const char*>(&code), sizeof code);
    return data.append(reason.substr(0, longestReason - sizeof code));
}

} // namespace

OpenDevice::OpenDevice(const Open& open, std::string itsId, bool readOnly)
    : id(std::move(itsId))
    , isReadOnly(readOnly)
    , remoteEvents(std::make_shared<EventQueue>(EVENT_REMOTE_DEVICE, 3 * sizeof(std::uint64_t)))
    , invalidations(std::make_shared<EventQueue>(EVENT_FEATURE_INVALIDATE, longestName))
    , errors(std::make_shared<EventQueue>(EVENT_ERROR, longestReason))
    , machine(open({[this](const EventKind& event, std::uint64_t nanoseconds) {
                        if ((state.notifiedEvents & event.mask) != 0)
                            remoteEvents->push(
                                EventQueue::numbered(event.id, bytesOf(event.mask, nanoseconds)));
                    },
                    [this](const std::string& reason) { errors->push(errorData(GC_ERR_IO, reason)); }})) {}

RemoteDevice::RemoteDevice(std::shared_ptr<OpenDevice> device)
    : Module("Device", "Device", device->id)
    , m_device(std::move(device)) {}

void RemoteDevice::write(std::uint64_t address, std::span<const std::uint8_t> bytes) {
    if (m_device->isReadOnly)
        throw Error(GC_ERR_ACCESS_DENIED, "the device " + id() + " was opened for reading");
    if (!m_device->invalidations->isOpen()) return Module::write(address, bytes);
    for (const std::string& name : registers().writeAndCompare(address, bytes))
        m_device->invalidations->push(EventQueue::named(name));
}

std::vector<Feature> RemoteDevice::makeFeatures() {
    const Device device{m_device->station(), m_device->acquisition(), m_device->state, id()};
    const std::vector<Feature> parameters =
        parameterFeatures(m_device->station(), [device] { return acquisitionLock(device); });
    std::vector<Feature> features;
    addStandardFeatures(device, parameters, features);
    features.insert(features.end(), parameters.begin(), parameters.end());
    return features;
}

std::shared_ptr<LocalDevice> LocalDevice::open(std::shared_ptr<Interface> interface,
                                               const OpenDevice::Open& open, const std::string& id,
                                               bool isReadOnly) {
    auto device = std::make_shared<OpenDevice>(open, id, isReadOnly);
    auto opened = std::make_shared<LocalDevice>(std::move(interface), std::move(device));
    HandleTable::add(opened);
    HandleTable::add(opened->m_remote);
    return opened;
}

LocalDevice::LocalDevice(std::shared_ptr<Interface> interface, std::shared_ptr<OpenDevice> device)
    : Module("TLDevice", "TLDevice", device->id)
    , m_interface(std::move(interface))
    , m_device(std::move(device))
    , m_remote(std::make_shared<RemoteDevice>(m_device))
    , m_streamId(id() + "-dma-0") {
    offerEvent(m_device->remoteEvents);
    offerEvent(m_device->invalidations);
    offerEvent(m_device->errors);
}

LocalDevice::~LocalDevice() = default;

std::shared_ptr<Stream> LocalDevice::openStream(const char* id) {
    if (m_streamId != &required(id, "id"))
        throw Error(GC_ERR_INVALID_ID, "there is no stream \"" + std::string(id) + "\"");
    if (m_stream != nullptr)
        throw Error(GC_ERR_RESOURCE_IN_USE, "the stream " + m_streamId + " is open already");
    m_stream = std::make_shared<Stream>(shared_from_this(), m_device, m_streamId);
    HandleTable::add(m_stream);
    return m_stream;
}

void LocalDevice::forget(const Stream& closed) {
    if (m_stream.get() == &closed) m_stream.reset();
}

void LocalDevice::close() {
    std::unique_lock lock(lockOfModules());
    while (const std::shared_ptr<Stream> stream = m_stream) {
        lock.unlock();
        stream->close();
        lock.lock();
    }
    m_remote->close();
    Module::close();
    lock.unlock();
    m_device->acquisition().stop();
    m_device->acquisition().finish();
}

std::vector<Feature> LocalDevice::makeFeatures() {
    return {textFeature(deviceInformation, "DeviceID", id()),
            textFeature(deviceInformation, "DeviceVendorName", vendorName),
            textFeature(deviceInformation, "DeviceModelName", modelName),
            wordFeature(deviceInformation, "DeviceType", transportType),
            selectorFeature(streamEnumeration, "StreamSelector", [] { return 1; }, {"StreamID"}),
            textFeature(streamEnumeration, "StreamID", m_streamId)};
}

} // namespace producer
