#include "entry/FgLoomWrapper.h"

#include "catalogue/ParameterInfoBuilderXML.h"
#include "entry/LiveObjects.h"
#include "support/library_flags.h"
#include "templates/patterns/LibraryGuard.h"

#include <bit>
#include <cstring>
#include <dlfcn.h>
#include <pthread.h>

namespace levels = vexo::tools::logging::levels;
using vexo::tools::logging::Logger;
using vexo::tools::logging::Logging;

namespace {

std::atomic<LOOMdevice*> lastDevice{nullptr};
std::atomic<fpga_design*> lastDesign{nullptr};

template <typename Word> Word* exchanged(std::atomic<Word*>& word, Word* fresh) {
    if (fresh != nullptr) word.store(fresh, std::memory_order_release);
    return word.load(std::memory_order_acquire);
}

template <typename Function> Function* lookUp(void* library, const char* name) {
    return reinterpret_cast<Function*>(dlsym(library, name));
}

} // namespace

FgLoomWrapperPrivate::~FgLoomWrapperPrivate() {
    if (libraryHandle != nullptr) dlclose(libraryHandle);
    if (designHandle != nullptr) TslUnloadTslFile(designHandle);
}

FgLoomWrapper::FgLoomWrapper(int ports) : m_private(std::make_unique<FgLoomWrapperPrivate>(ports)) {
    LibraryInitController::init();
    LiveObjects::add(this);
}

FgLoomWrapper::~FgLoomWrapper() {
    LiveObjects::remove(this);
    m_private.reset();
    LibraryInitController::deinit();
}

Logger* FgLoomWrapper::lazyLogger(std::atomic<Logger*>& place, const char* name) {
    Logger* known = place.load(std::memory_order_acquire);
    if (known == nullptr) {
        known = Logging::instance()->getLogger(name);
        place.store(known, std::memory_order_release);
    }
    return known;
}

void FgLoomWrapper::writeLine(Logger& logger, std::uint32_t level, const std::string& text) {
    logger.log(level, ("thread-id=" + std::to_string(pthread_self()) + '|' + text).c_str(), 0, 0);
}

Logger* FgLoomWrapper::logger() { return lazyLogger(m_logger, "vexo.wrapper.FgLoomWrapper"); }

int FgLoomWrapper::initializeDllFunctions(const char* library) {
    m_private->libraryHandle = dlopen(library, runtimeBindFlags);
    if (m_private->libraryHandle == nullptr) {
        log(levels::bindingFailed, "error opening dll '", library, "'");
        return fgError().setErr(FG_ERR_UNRESOLVED);
    }
    m_private->wrapperFg.bind(m_private->libraryHandle);
    m_private->getParameterIdByNameFn =
        lookUp<grabcore_getParameterIdByName>(m_private->libraryHandle, "Fg_getParameterIdByName");
    return FG_OK;
}

int FgLoomWrapper::runFgInit(const char* tslName, LOOMdevice* device, fpga_design* design, int flags) {
    FgLoomWrapperPrivate& own = *m_private;
    own.initHandleSlaveAware =
        lookUp<grabcore_InitHandleSlaveAware>(own.libraryHandle, "Fg_InitHandleSlaveAware");
    own.initHandle = lookUp<grabcore_InitHandle>(own.libraryHandle, "Fg_InitHandle");
    own.getLastErrorNumberFn =
        lookUp<grabcore_getLastErrorNumber>(own.libraryHandle, "Fg_getLastErrorNumber");
    if (own.initHandleSlaveAware == nullptr && own.initHandle == nullptr) {
        log(levels::bindingFailed,
            "cannot resolve function 'Fg_InitHandle' and/or 'Fg_InitHandleSlaveAware'");
        return fgError().setErr(FG_ERR_UNRESOLVED);
    }

    const char* used = "Fg_InitHandleSlaveAware";
    if (own.initHandleSlaveAware != nullptr) {
        own.grabcoreFg = own.initHandleSlaveAware(tslName, device, design, flags);
    } else {
        used = "Fg_InitHandle"; // knows no slaves: the flags are lost
        own.grabcoreFg = own.initHandle(tslName, device, design);
    }
    if (own.grabcoreFg == nullptr) {
        log(levels::accessFailed, "error calling '", used, "' (tslName = '", tslName, "')");
        return fgError().setErr(own.getLastErrorNumberFn != nullptr ? own.getLastErrorNumberFn(nullptr)
                                                                    : FG_ERR_INIT);
    }
    accessDeviceHandle(device);
    accessDesignHandle(design);
    return FG_OK;
}

void FgLoomWrapper::initHandles(LOOMdevice* device, fpga_design* design) {
    m_private->boardHandle = device;
    m_private->designHandle = design;
}

int FgLoomWrapper::end(FgLoomWrapper* wrapper) {
    // Called without an inner handle too, on purpose; and before the runtime's library is closed.
    const auto freeGrabber = wrapper->wrapperFg().Fg_FreeGrabber;
    const int result = freeGrabber != nullptr ? freeGrabber(wrapper->grabcoreFg()) : FG_OK;
    delete wrapper;
    return result;
}

LOOMdevice* FgLoomWrapper::accessDeviceHandle(LOOMdevice* device) { return exchanged(lastDevice, device); }

fpga_design* FgLoomWrapper::accessDesignHandle(fpga_design* design) { return exchanged(lastDesign, design); }

int FgLoomWrapper::getParameterIdByName(const char* name) {
    return m_private->getParameterIdByNameFn != nullptr
               ? m_private->getParameterIdByNameFn(m_private->grabcoreFg, name)
               : 0;
}

int FgLoomWrapper::freeUnwrappedParameterString(int id, void* value, int dma, FgParamTypes type) {
    // Without the function there is nothing to release.
    if (wrapperFg().Fg_freeParameterStringWithType == nullptr) return FG_OK;
    return wrapperFg().Fg_freeParameterStringWithType(grabcoreFg(), id, value, dma, type);
}

RegisterInfo* FgLoomWrapper::getUnwrappedParameterInfo() {
    return wrapperFg().Fg_getParameterInfo != nullptr ? wrapperFg().Fg_getParameterInfo(grabcoreFg(), 0)
                                                      : nullptr;
}

std::size_t FgLoomWrapper::elementWidth(FgParamTypes type) {
    switch (type) {
    case FG_PARAM_INT32:
    case FG_PARAM_UINT32:
        return 4;
    case FG_PARAM_INT64:
    case FG_PARAM_UINT64:
    case FG_PARAM_DOUBLE:
        return 8;
    default:
        return 0;
    }
}

void FgLoomWrapper::setFieldCache(std::uint32_t* cache, const FieldParameterInt_s* record) {
    if (record != nullptr) cache[record->index] = record->value;
}

void FgLoomWrapper::setFieldCache(double* cache, const FieldParameterDouble_s* record) {
    if (record != nullptr) cache[record->index] = record->value;
}

void FgLoomWrapper::setFieldCache(void* cache, const FieldParameterAccess* record) {
    if (record == nullptr || record->values == nullptr) return;
    const std::size_t width = elementWidth(record->vtype);
    if (width == 0) return;
    std::memmove(static_cast<char*>(cache) + width * record->index, record->values, width * record->count);
}

void FgLoomWrapper::getFieldCache(const std::uint32_t* cache, FieldParameterInt_s* record) {
    if (record != nullptr) record->value = cache[record->index];
}

void FgLoomWrapper::getFieldCache(const double* cache, FieldParameterDouble_s* record) {
    if (record != nullptr) record->value = cache[record->index];
}

void FgLoomWrapper::getFieldCache(const void* cache, const FieldParameterAccess* record) {
    if (record == nullptr || record->values == nullptr) return;
    const std::size_t width = elementWidth(record->vtype);
    if (width == 0) return;
    std::memmove(record->values, static_cast<const char*>(cache) + width * record->index,
                 width * record->count);
}

RegisterInfo* FgLoomWrapper::Fg_getParameterInfo(int index) { return parameterInfo().getRegisterInfo(index); }

int FgLoomWrapper::Fg_getLastErrorNumberLoom() {
    if (wrapperFg().Fg_getLastErrorNumber == nullptr || grabcoreFg() == nullptr) return FG_ERR_NOT_AVAILABLE;
    return wrapperFg().Fg_getLastErrorNumber(grabcoreFg());
}

int FgLoomWrapper::Fg_getParameterInfoXML(Fg_Struct*, int index, char* buffer, unsigned long* size) {
    if (size == nullptr) return fgError().setErr(FG_ERR_INVALID_ARGUMENT);
    if (buffer != nullptr && *size == 0) return fgError().setErr(FG_ERR_BUFFER);
    if (parameterInfo().getRegisterInfo(index) == nullptr) return fgError().setErr(FG_ERR_NO_TRANSLATION);

    const std::string document = ParameterInfoBuilderXML(parameterInfo(), appletName(), index).build();
    if (buffer != nullptr) {
        if (document.size() >= *size) return fgError().setErr(FG_ERR_BUFFER);
        std::memcpy(buffer, document.c_str(), document.size() + 1);
    }
    *size = document.size() + 1;
    return fgError().setErr(FG_OK);
}

// No shading hardware: these stay as they are and complete the set of names.

ShadingMaster* FgLoomWrapper::Fg_AllocShading(int, int) { return nullptr; }

int FgLoomWrapper::Fg_FreeShading(ShadingMaster*) { return FG_ERR_NOT_SUPPORTED; }

int FgLoomWrapper::Shad_SetSubValueLine(ShadingMaster*, int, int, float) { return FG_ERR_NOT_SUPPORTED; }

int FgLoomWrapper::Shad_SetMultValueLine(ShadingMaster*, int, int, float) { return FG_ERR_NOT_SUPPORTED; }

int FgLoomWrapper::Shad_SetFixedPatternNoiseLine(ShadingMaster*, int, int, int) {
    return FG_ERR_NOT_SUPPORTED;
}

int FgLoomWrapper::Shad_GetMaxLine(ShadingMaster*) { return FG_ERR_NOT_SUPPORTED; }

int FgLoomWrapper::Shad_GetAccess(ShadingMaster*) { return FG_ERR_NOT_SUPPORTED; }

int FgLoomWrapper::Shad_FreeAccess(ShadingMaster*) { return FG_ERR_NOT_SUPPORTED; }

int FgLoomWrapper::Shad_WriteActLine(ShadingMaster*, int) { return FG_ERR_NOT_SUPPORTED; }

std::uint64_t FgLoomWrapper::Fg_getEventMask(const char* name) {
    if (name == nullptr) return 0;
    for (int number = 0; number < 64; ++number) {
        const TslEvent* event = TslGetEvent(designHandle(), number);
        if (event != nullptr && event->name != nullptr && std::strcmp(event->name, name) == 0)
            return std::uint64_t{1} << number;
    }
    return 0;
}

const char* FgLoomWrapper::Fg_getEventName(std::uint64_t mask) {
    if (!std::has_single_bit(mask)) return nullptr;
    const TslEvent* event = TslGetEvent(designHandle(), std::countr_zero(mask));
    return event != nullptr ? event->name : nullptr;
}
