/** The system module: the producer itself, with a list of the boards. */
#ifndef PRODUCER_MODULES_SYSTEM_H
#define PRODUCER_MODULES_SYSTEM_H

#include "device/Libraries.h"
#include "modules/Module.h"

#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace producer {

class Interface;

/** The caller must hold the lock of the modules. */
class System final : public Module, public std::enable_shared_from_this<System> {
public:
    System();
    ~System() override;

    /** Also used for the library as a whole. */
    static Answer info(std::int32_t command);

    /** The list of the last update. */
    std::size_t interfaceCount() const { return m_isUpdated ? m_ids.size() : 0; }
    /** Throws INVALID_INDEX. */
    const std::string& interfaceId(std::uint32_t index) const;
    /** True if the list has changed. */
    bool updateInterfaces() { return !m_isUpdated.exchange(true); }
    /** Throw INVALID_ID. */
    Answer interfaceInfo(const char* id, std::int32_t command) const;
    std::shared_ptr<Interface> openInterface(const char* id);
    void forget(const Interface& closed);

    /** The libraries stay loaded until the system is closed. */
    const Libraries& libraries();
    /** Ends the threads of all open devices. */
    void stopThreads();

    void close() override;

private:
    std::vector<Feature> makeFeatures() override;
    const std::string& known(const char* id) const;

    std::vector<std::string> m_ids;
    std::atomic<bool> m_isUpdated{false};
    std::vector<std::shared_ptr<Interface>> m_open;
    Libraries m_libraries;
};

} // namespace producer

#endif
