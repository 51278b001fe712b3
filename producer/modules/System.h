/** The system module: the producer itself, with a list of the boards and the served stations. */
#ifndef PRODUCER_MODULES_SYSTEM_H
#define PRODUCER_MODULES_SYSTEM_H

#include "device/Libraries.h"
#include "modules/Module.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace producer {

class Interface;

/** The caller must hold the lock of the modules, unless the function says otherwise. */
class System final : public Module, public std::enable_shared_from_this<System> {
public:
    System();
    ~System() override;

    /** Also used for the library as a whole. */
    static Answer info(std::int32_t command);

    /** The list of the last update. */
    std::size_t interfaceCount() const;
    /** Throws INVALID_INDEX. */
    std::string interfaceId(std::uint32_t index) const;
    /** True if the list has changed. */
    bool updateInterfaces();
    /** Throw INVALID_ID. */
    Answer interfaceInfo(const char* id, std::int32_t command) const;
    std::shared_ptr<Interface> openInterface(const char* id);
    void forget(const Interface& closed);

    /** The libraries stay loaded until the system is closed. */
    const Libraries& libraries();
    /** Ends the threads of all open devices. Takes the locks itself. */
    void stopThreads();

    /** Takes the locks itself. */
    void close() override;

private:
    std::vector<Feature> makeFeatures() override;
    /** What an id of an interface stands for. */
    struct Target {
        std::string id, station; /**< the name of a served station; empty for a board of this process */
    };
    Target known(const char* id) const;

    const std::vector<std::string> m_boards; // ids
    mutable std::mutex m_listMutex;
    std::vector<std::string> m_listed; // ids at the last update, guarded by it
    std::vector<std::shared_ptr<Interface>> m_open;
    Libraries m_libraries;
};

} // namespace producer

#endif
