/** The published part of the parameters: names and ids, events, the tree of descriptions. */
#ifndef ENTRY_PUBLISHEDPARAMETERS_H
#define ENTRY_PUBLISHEDPARAMETERS_H

#include "catalogue/DirectAccessStore.h"
#include "entry/DesignAccess.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>

/**
 * The public parameters, followed by the registers and design parameters that are offered for direct access.
 * Everything is built at bring-up and constant afterwards, except for single fields of the records.
 */
class PublishedParameters : public DesignAccess {
public:
    static constexpr std::size_t publicParameters = 164;

    /** An `offline` object offers nothing for direct access. */
    PublishedParameters(int ports, bool offline);

    // ---- entry/identity.cpp

    int Fg_getParameterIdByName(const char* name) override;
    const char* Fg_getParameterName(int index) override;
    int Fg_getParameterId(int index) override;
    int Fg_getNrOfParameter() override;
    std::uint64_t Fg_getEventMask(const char* name) override;
    const char* Fg_getEventName(std::uint64_t mask) override;

    // ---- Bring-up

    void publishParameterTables();      // entry/publish_parameter_tables.cpp
    void buildParameterInfo() override; // entry/build_parameter_info.cpp

protected:
    /** The live record of a parameter; null where the tree has none. */
    RegisterInfo* recordAt(std::size_t index) { return m_registerInfos[index]; }
    bool offersRegisters() const { return m_directRegisterAccess; }

private:
    void collectDirectParameters();
    void publishDirectNames();
    void addDirectRegisters();
    void addDirectParameters();
    void publishEvents(); // trigger/events.cpp
    void publishEvent(const char* name, std::uint64_t mask);

    const bool m_directRegisterAccess;
    DirectAccessStore m_directAccessStore;
    std::string m_directAccessSection;
    std::unordered_map<std::string, int> m_directRegisterIdByName; // "DRA_" names
    std::map<std::string, int> m_directParameterIdByName;          // "DLOOMA_" names
    std::map<int, std::string> m_directNameByIndex;                // both, after the public parameters
    std::array<RegisterInfo*, publicParameters> m_registerInfos{};
    std::map<std::string, std::uint64_t, std::less<>> m_eventMaskByName;
    std::map<std::uint64_t, std::string> m_eventNameByMask;
};

#endif
