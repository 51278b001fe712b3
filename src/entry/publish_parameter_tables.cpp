// Publishes registers and design parameters for direct access, and the events. The names of the public
// parameters are constant.

#include "catalogue/direct_registers.h"
#include "catalogue/runtime_tree.h"
#include "entry/PublishedParameters.h"
#include "support/switches.h"

void PublishedParameters::publishParameterTables() {
    if (isSwitchedOn("VEXO_ENABLE_DLOOMA")) collectDirectParameters();
    publishDirectNames();
    publishEvents();
}

void PublishedParameters::collectDirectParameters() {
    catalogue::walkRuntimeTree(
        getUnwrappedParameterInfo(),
        [this](const RegisterInfo& leaf, const RegisterInfo*) {
            if (leaf.name != nullptr && catalogue::isDirectKind(leaf))
                m_directAccessStore.insert(m_directAccessSection, leaf.name, "On");
        },
        [](const RegisterInfo&, const RegisterInfo*) {});
}

void PublishedParameters::publishDirectNames() {
    int index = publicParameters;
    if (m_directRegisterAccess)
        catalogue::forEachRegister(designHandle(), [&](const catalogue::DirectRegister& reg) {
            m_directRegisterIdByName[reg.publicName()] = reg.publicId();
            m_directNameByIndex[index++] = reg.publicName();
        });
    // Names and indices take two passes, and each looks the ids up in the runtime.
    const auto forEachDirectParameter = [this](auto visit) {
        for (const std::string& name : m_directAccessStore.switchedOn(m_directAccessSection))
            if (const int id = getParameterIdByName(name.c_str()); id != 0) visit("DLOOMA_" + name, id);
    };
    forEachDirectParameter([this](const std::string& name, int id) {
        m_directParameterIdByName[name] = catalogue::movedId(id, FG_DIRECT_PARAMETER_BASE);
    });
    forEachDirectParameter([&](const std::string& name, int) { m_directNameByIndex[index++] = name; });
}
