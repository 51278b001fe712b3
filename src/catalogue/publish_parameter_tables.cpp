// What is published beside the public parameters, whose names are constant: registers and design parameters
// for direct access, and the events.

#include "catalogue/direct_registers.h"
#include "catalogue/runtime_tree.h"
#include "entry/FgLoomWrapperImpl.h"
#include "support/switches.h"

void FgLoomWrapperImpl::publishParameterTables() {
    if (isSwitchedOn("VEXO_ENABLE_DLOOMA")) collectDirectParameters();
    publishDirectNames();
    publishEvents();
}

void FgLoomWrapperImpl::collectDirectParameters() {
    catalogue::walkRuntimeTree(
        getUnwrappedParameterInfo(),
        [this](const RegisterInfo& leaf, const RegisterInfo*) {
            if (leaf.name != nullptr && catalogue::isDirectKind(leaf))
                m_directAccessStore.insert(m_directAccessSection, leaf.name, "On");
        },
        [](const RegisterInfo&, const RegisterInfo*) {});
}

void FgLoomWrapperImpl::publishDirectNames() {
    int index = publicParameters;
    if (m_directRegisterAccess)
        catalogue::forEachRegister(designHandle(), [&](const catalogue::DirectRegister& reg) {
            m_directRegisterIdByName[reg.publicName()] = reg.publicId();
            m_directNameByIndex[index++] = reg.publicName();
        });
    for (const std::string& name : m_directAccessStore.switchedOn(m_directAccessSection)) {
        const int id = getParameterIdByName(name.c_str());
        if (id == 0) continue;
        const std::string publicName = "DLOOMA_" + name;
        m_directParameterIdByName[publicName] = catalogue::movedId(id, FG_DIRECT_PARAMETER_BASE);
        m_directNameByIndex[index++] = publicName;
    }
}
