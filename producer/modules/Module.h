/** The base class of all modules: an identifier, a port with a description, events. */
#ifndef PRODUCER_MODULES_MODULE_H
#define PRODUCER_MODULES_MODULE_H

#include "base/Answer.h"
#include "base/EventQueue.h"
#include "base/HandleTable.h"
#include "device/identity.h"
#include "features/RegisterMap.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace producer {

/**
 * A GenTL module: system, interface, device, stream, and the remote device. The functions of the port and of
 * the events are thread-safe. `lockOfModules` guards the relations between modules: open children and
 * their parents.
 */
class Module : public Object {
public:
    /** `type` is the module type in the standard, `name` is used in the names of its description and of its
     *  port. */
    Module(const char* type, std::string name, std::string id)
        : m_type(type)
        , m_name(std::move(name))
        , m_id(std::move(id)) {}

    const std::string& id() const { return m_id; }

    Answer portInfo(std::int32_t command);
    std::string url();
    Answer urlInfo(std::int32_t command);
    /** Throws the exceptions of RegisterMap, and ACCESS_DENIED for a write to a module that was opened for
     *  reading. */
    void read(std::uint64_t address, std::span<std::uint8_t> bytes) { registers().read(address, bytes); }
    virtual void write(std::uint64_t address, std::span<const std::uint8_t> bytes) {
        registers().write(address, bytes);
    }

    /** The handle of the event. Throws NOT_IMPLEMENTED for an unsupported kind, RESOURCE_IN_USE. */
    void* registerEvent(std::int32_t kind);
    void unregisterEvent(std::int32_t kind);

    /** Closes the module and its children: their handles become invalid, and threads that wait for an event
     *  get ABORT. Overrides take the locks themselves; otherwise the caller must hold the lock of the modules. */
    virtual void close();

protected:
    /** The features of the module's description. Called once, on the first access to the port. */
    virtual std::vector<Feature> makeFeatures() = 0;
    void offerEvent(std::shared_ptr<EventQueue> queue) { m_events[queue->kind()] = std::move(queue); }
    virtual bool canBeWritten() const { return true; }
    RegisterMap& registers();

private:
    std::shared_ptr<EventQueue> eventOf(std::int32_t kind) const;

    const char* const m_type;
    const std::string m_name;
    const std::string m_id;
    std::once_flag m_hasRegisters;
    std::unique_ptr<RegisterMap> m_registers;
    std::mutex m_eventMutex; // while an event is registered or unregistered
    std::map<std::int32_t, std::shared_ptr<EventQueue>> m_events; // filled by the constructors
};

/** Held while the relations between modules change, never while another process is waited for. */
std::mutex& lockOfModules();
/** Unlocks it in a forked child: a thread of the parent may have held it. */
void forgetLockOfModules();

/** A read-only feature. */
Feature textFeature(const char* category, const char* name, std::string value);
Feature textFeature(const char* category, const char* name, std::function<std::string()> get);
Feature numberFeature(const char* category, const char* name, std::function<std::uint64_t()> get);
/** An enumeration with a single entry. */
Feature wordFeature(const char* category, const char* name, const char* word);
/** A selector with one or more entries; the first one is selected. */
Feature selectorFeature(const char* category, const char* name, std::function<std::uint64_t()> count,
                        std::vector<std::string> selected);

} // namespace producer

#endif
