// The applet's identity, and the lookup of its parameters and events by name and number.

#include "entry/sdk_parameters.h"
#include "support/switches.h"

#include <stdexcept>

vexo::tools::logging::Logger* FgLoomWrapperImpl::logger() {
    return lazyLogger(m_logger, "vexo.wrapper.Grab_TwinLaneLineColor");
}

PublishedParameters::PublishedParameters(int ports, bool offline)
    : DesignAccess(ports)
    , m_directRegisterAccess(!offline && isSwitchedOn("VEXO_ENABLE_DRA"))
    , m_directAccessStore(!offline)
    , m_directAccessSection(offline ? "" : "none") {}

int PublishedParameters::Fg_getNrOfParameter() {
    return static_cast<int>(publicParameters + m_directNameByIndex.size());
}

const char* PublishedParameters::Fg_getParameterName(int index) {
    const char* name = nullptr;
    if (const auto position = static_cast<std::size_t>(index); position < sdkParameters.size())
        name = sdkParameters[position].name;
    else if (const auto found = m_directNameByIndex.find(index); found != m_directNameByIndex.end())
        name = found->second.c_str();
    setError(name != nullptr ? FG_OK : FG_ERR_INVALID_ARGUMENT);
    return name;
}

int PublishedParameters::Fg_getParameterId(int index) {
    if (const auto position = static_cast<std::size_t>(index); position < sdkParameters.size()) {
        setError(FG_OK);
        return sdkParameters[position].id;
    }
    // Directly accessible registers and design parameters have no row.
    const char* name = Fg_getParameterName(index);
    return name != nullptr ? Fg_getParameterIdByName(name) : FG_ERR_INVALID_ARGUMENT;
}

int PublishedParameters::Fg_getParameterIdByName(const char* name) {
    if (name != nullptr && *name != '\0') {
        if (const SdkParameter* parameter = findParameter(std::string_view(name))) {
            setError(FG_OK);
            return parameter->id;
        }
        // Direct design parameters have a name and an index but no id here: they are accessed by number.
        if (const auto found = m_directRegisterIdByName.find(name); found != m_directRegisterIdByName.end()) {
            setError(FG_OK);
            return found->second;
        }
    }
    return fgError().setErr(FG_ERR_INVALID_ARGUMENT);
}

std::uint64_t PublishedParameters::Fg_getEventMask(const char* name) {
    const auto found = name != nullptr ? m_eventMaskByName.find(name) : m_eventMaskByName.end();
    const bool known = found != m_eventMaskByName.end();
    setError(known ? FG_OK : FG_ERR_INVALID_ARGUMENT);
    return known ? found->second : 0;
}

const char* PublishedParameters::Fg_getEventName(std::uint64_t mask) {
    const auto found = m_eventNameByMask.find(mask);
    const bool known = found != m_eventNameByMask.end();
    setError(known ? FG_OK : FG_ERR_INVALID_ARGUMENT);
    return known ? found->second.c_str() : nullptr;
}

const char* FgLoomWrapperImpl::vendorName() { return "Norvane AG"; }

const char* FgLoomWrapperImpl::appletName() { return "Grab_TwinLaneLineColor"; }

// A separate version: it follows neither the applet's version and revision nor its version text.
const char* FgLoomWrapperImpl::appletVersionName() { return "4.0"; }

int FgLoomWrapperImpl::loadAppletId() { return 0; }

// For applets with several DMA channels; this one has nothing to map.

int FgLoomWrapperImpl::processChannelToDma(int, int) {
    throw std::runtime_error("processChannelToDma() is not implemented.");
}

int FgLoomWrapperImpl::mapDmaToFormat(int) {
    throw std::runtime_error("mapDmaToFormat() is not implemented.");
}

void FgLoomWrapperImpl::setDmaAlignment(int, int) {
    throw std::runtime_error("setDmaAlignment() is not implemented.");
}

int FgLoomWrapperImpl::getDmaAlignment(int) {
    throw std::runtime_error("getDmaAlignment() is not implemented.");
}
