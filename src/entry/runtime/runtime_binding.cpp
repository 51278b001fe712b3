// The binding to the grabber runtime: its library, its functions, its inner handle.

#include "entry/FgLoomWrapper.h"
#include "support/library_flags.h"

#include <dlfcn.h>

namespace levels = vexo::tools::logging::levels;

namespace {

template <typename Function> Function* lookUp(void* library, const char* name) {
    return reinterpret_cast<Function*>(dlsym(library, name));
}

} // namespace

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
        used = "Fg_InitHandle"; // takes no flags: they are dropped
        own.grabcoreFg = own.initHandle(tslName, device, design);
    }
    if (own.grabcoreFg == nullptr) {
        log(levels::accessFailed, "error calling '", used, "' (tslName = '", tslName, "')");
        return fgError().setErr(callOr(FG_ERR_INIT, own.getLastErrorNumberFn, nullptr));
    }
    accessDeviceHandle(device);
    accessDesignHandle(design);
    return FG_OK;
}

int FgLoomWrapper::getParameterIdByName(const char* name) {
    return callOr(0, m_private->getParameterIdByNameFn, m_private->grabcoreFg, name);
}

int FgLoomWrapper::freeUnwrappedParameterString(int id, void* value, int dma, FgParamTypes type) {
    // Without the function there is nothing to release.
    return callOr(FG_OK, wrapperFg().Fg_freeParameterStringWithType, grabcoreFg(), id, value, dma, type);
}

RegisterInfo* FgLoomWrapper::getUnwrappedParameterInfo() {
    return callOr(nullptr, wrapperFg().Fg_getParameterInfo, grabcoreFg(), 0);
}

int FgLoomWrapper::Fg_getLastErrorNumberLoom() {
    if (grabcoreFg() == nullptr) return FG_ERR_NOT_AVAILABLE;
    return callOr(FG_ERR_NOT_AVAILABLE, wrapperFg().Fg_getLastErrorNumber, grabcoreFg());
}
