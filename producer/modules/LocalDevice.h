/** The device module, and the remote device: the station of process 0 of a board, here or in a process that serves it. */
#ifndef PRODUCER_MODULES_LOCALDEVICE_H
#define PRODUCER_MODULES_LOCALDEVICE_H

#include "device/Machine.h"
#include "device/standard_features.h"
#include "modules/Module.h"

#include <memory>
#include <string>

namespace producer {

class Interface;
class RemoteDevice;
class Stream;

/** State that the modules of an open device share. */
struct OpenDevice {
    using Open = std::function<Machine(const MachineListener&)>;

    OpenDevice(const Open& open, std::string itsId, bool readOnly);

    DeviceStation& station() const { return *machine.station; }
    Acquisition& acquisition() const { return *machine.acquisition; }

    const std::string id;
    const bool isReadOnly;
    const std::shared_ptr<EventQueue> remoteEvents;  // design events
    const std::shared_ptr<EventQueue> invalidations; // for features of the remote device
    const std::shared_ptr<EventQueue> errors;        // one: the loss of the machine
    DeviceState state;
    const Machine machine; // last: its thread uses the others
};

/** The port to the parameters of the applet. */
class RemoteDevice final : public Module {
public:
    explicit RemoteDevice(std::shared_ptr<OpenDevice> device);

    void write(std::uint64_t address, std::span<const std::uint8_t> bytes) override;

private:
    std::vector<Feature> makeFeatures() override;
    bool canBeWritten() const override { return !m_device->isReadOnly; }

    const std::shared_ptr<OpenDevice> m_device;
};

/** The caller must hold the lock of the modules, unless the function says otherwise. */
class LocalDevice final : public Module, public std::enable_shared_from_this<LocalDevice> {
public:
    /** Opens the station; without the lock of the modules. Throws IO. */
    static std::shared_ptr<LocalDevice> open(std::shared_ptr<Interface> interface,
                                             const OpenDevice::Open& open, const std::string& id,
                                             bool isReadOnly);
    LocalDevice(std::shared_ptr<Interface> interface, std::shared_ptr<OpenDevice> device);
    ~LocalDevice() override;

    Interface& interface() const { return *m_interface; }
    RemoteDevice& remote() const { return *m_remote; }
    const std::string& streamId() const { return m_streamId; }
    /** Throws INVALID_ID, RESOURCE_IN_USE. */
    std::shared_ptr<Stream> openStream(const char* id);
    void forget(const Stream& closed);

    // Without the lock of the modules: they may wait for another process.

    void stopThread() { m_device->acquisition().finish(); }
    void close() override;

private:
    std::vector<Feature> makeFeatures() override;

    const std::shared_ptr<Interface> m_interface;
    const std::shared_ptr<OpenDevice> m_device;
    const std::shared_ptr<RemoteDevice> m_remote;
    const std::string m_streamId;
    std::shared_ptr<Stream> m_stream; // null while closed
};

} // namespace producer

#endif
