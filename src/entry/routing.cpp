// Routing of a parameter access: three id spaces, the lock, and conversion of thrown codes to results.

#include "catalogue/parameter_tree.h"
#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"

#include <cstring>

namespace levels = vexo::tools::logging::levels;
using vexo::templates::platform::CriticalSectionGuard;

namespace {

bool isDesignParameter(int id) { return id > FG_DIRECT_PARAMETER_BASE; }

/** The runtime allocates the strings of these, so it has to release them. */
bool isServedByRuntime(int id) {
    const SdkParameter* parameter = findParameter(id);
    return id == FG_NR_OF_PROCESSES ||
           (parameter != nullptr && parameter->source == ValueSource(kinds::Runtime::readRuntime));
}

/** There is one DMA channel, and it belongs to process 0. */
void requireKnownDma(int dma) {
    if (dma != 0) refuse(FG_ERR_INVALID_ARGUMENT);
}

/** Longer allocated texts are truncated. */
constexpr std::size_t longestAllocatedText = 655360;

/** Converts a thrown code to a result. Other exceptions propagate. */
template <typename Access> int resultOf(Access access) {
    try {
        access();
        return FG_OK;
    } catch (int code) {
        return code;
    }
}

} // namespace

inline void FgLoomWrapperImpl::setParameter(int id, const void* value, int dma, FgParamTypes type) {
    requireKnownDma(dma);
    if (id == FG_PARAM_DESCR) refuseWriteTo("FG_PARAM_DESCR");
    const SdkParameter* parameter = findParameter(id);
    if (parameter == nullptr) refuseUnknown("set", id);
    if (parameter->set == nullptr) refuseWriteTo(parameter->name);
    parameter->set(*this, value, type);
}

inline void FgLoomWrapperImpl::getParameter(int id, void* value, int dma, FgParamTypes type) {
    // The number of processes can be read with any DMA channel.
    if (id != FG_NR_OF_PROCESSES) requireKnownDma(dma);
    if (id == FG_PARAM_DESCR) return readDescription(value, type);
    const SdkParameter* parameter = findParameter(id);
    if (parameter == nullptr) refuseUnknown("get", id);
    read(*parameter, value, dma, type);
}

int FgLoomWrapperImpl::Fg_setParameterWithType(int id, const void* value, int dma, FgParamTypes type) {
    if (value == nullptr) return fgError().setErr(FG_ERR_INVALID_ARGUMENT);
    const CriticalSectionGuard guard(&m_lock);
    if (isDesignParameter(id))
        return fgError().setErr(
            setUnwrappedParameterWithType(id - FG_DIRECT_PARAMETER_BASE, value, dma, type));
    if (isDirectRegister(id)) return fgError().setErr(writeRegister(id - FG_DIRECT_REGISTER_BASE, value));
    return fgError().setErr(resultOf([&] { setParameter(id, value, dma, type); }));
}

int FgLoomWrapperImpl::Fg_getParameterWithType(int id, void* value, int dma, FgParamTypes type) {
    if (value == nullptr) return fgError().setErr(FG_ERR_INVALID_ARGUMENT);
    const CriticalSectionGuard guard(&m_lock);
    if (isDesignParameter(id))
        return fgError().setErr(
            getUnwrappedParameterWithType(id - FG_DIRECT_PARAMETER_BASE, value, dma, type));
    if (isDirectRegister(id)) return fgError().setErr(readRegister(id - FG_DIRECT_REGISTER_BASE, value));
    return fgError().setErr(resultOf([&] { getParameter(id, value, dma, type); }));
}

bool FgLoomWrapperImpl::isDirectRegister(int id) const {
    return offersRegisters() && id > FG_DIRECT_REGISTER_BASE && id <= FG_DIRECT_PARAMETER_BASE;
}

int FgLoomWrapperImpl::writeRegister(int reg, const void* value) {
    std::uint64_t word = 0;
    const std::size_t width = TslGetRegisterBitRange(designHandle(), reg) > 32 ? 8 : 4;
    std::memcpy(&word, value, width); // little-endian: a short word is widened with zeros
    return VexoRegisterWrite(boardHandle(), reg, word);
}

int FgLoomWrapperImpl::readRegister(int reg, void* value) {
    std::uint64_t word = 0;
    const int result = VexoRegisterRead(boardHandle(), reg, &word);
    if (result != FG_OK) return result;
    const std::size_t width = TslGetRegisterBitRange(designHandle(), reg) > 32 ? 8 : 4;
    std::memcpy(value, &word, width);
    return FG_OK;
}

void FgLoomWrapperImpl::refuseUnknown(const char* verb, int id) {
    log(levels::refusedCall, "trying to ", verb, " unknown SDK parameter '", id, "' on process 0!");
    refuse(FG_ERR_INVALID_ARGUMENT);
}

void FgLoomWrapperImpl::refuseWriteTo(const char* name) {
    log(levels::refusedCall, "trying to set read-only SDK parameter '", name, "' on process 0!");
    refuse(FG_ERR_NOT_AVAILABLE);
}

std::uint32_t FgLoomWrapperImpl::numberOfProcesses() {
    return static_cast<std::uint32_t>(Info(FG_INFO_PROCESSES, 0, 0, nullptr, nullptr));
}

void FgLoomWrapperImpl::giveText(std::string_view text, void* value, FgParamTypes type) {
    if (type != FG_PARAM_ALLOCATED_STRING) {
        copyText(text, static_cast<char*>(value));
        return;
    }
    char* copy = m_handedOutTexts.handOut(text.substr(0, longestAllocatedText));
    std::memcpy(value, &copy, sizeof copy);
}

void FgLoomWrapperImpl::readDescription(void* value, FgParamTypes type) {
    const SdkParameter* parameter = findParameter(std::string_view(static_cast<const char*>(value)));
    giveText(parameter != nullptr ? catalogue::descriptionOf(parameter->id) : "-", value, type);
}

int FgLoomWrapperImpl::Fg_freeParameterStringWithType(int id, void* value, int dma, FgParamTypes type) {
    if (isDesignParameter(id))
        return fgError().setErr(
            freeUnwrappedParameterString(id - FG_DIRECT_PARAMETER_BASE, value, dma, type));
    // Unlike set and get, the code for an unknown DMA channel is thrown to the caller here.
    requireKnownDma(dma);
    if (isServedByRuntime(id)) return freeUnwrappedParameterString(id, value, dma, type);

    if (!m_handedOutTexts.release(static_cast<const char*>(value)))
        return fgError().setErr(FG_ERR_INVALID_ARGUMENT);
    return FG_OK;
}
