// The binding to the grabber runtime: its library, its functions, its inner handle.

#include "entry/FgLoomWrapper.h"
#include "support/library_flags.h"

#include <dlfcn.h>

namespace levels = vexo::tools::logging::levels;

int FgLoomWrapper::initializeDllFunctions(const char* library) {
    m_private->libraryHandle = dlopen(library, runtimeBindFlags);
    if (m_private->libraryHandle == nullptr) {
        log(levels::bindingFailed, "error opening dll '", library, "'");
        return fgError().setErr(FG_ERR_UNRESOLVED);
    }
    m_private->wrapperFg.bind(m_private->libraryHandle);
    return FG_OK;
}

int FgLoomWrapper::runFgInit(const char* tslName, LOOMdevice* device, fpga_design* design, int flags) {
    FgLoomWrapperPrivate& own = *m_private;
    const RuntimeFunctions& runtime = own.wrapperFg;
    if (runtime.Fg_InitHandleSlaveAware == nullptr && runtime.Fg_InitHandle == nullptr) {
        log(levels::bindingFailed,
            "cannot resolve function 'Fg_InitHandle' and/or 'Fg_InitHandleSlaveAware'");
        return fgError().setErr(FG_ERR_UNRESOLVED);
    }

    const char* used = "Fg_InitHandleSlaveAware";
    if (runtime.Fg_InitHandleSlaveAware != nullptr) {
        own.grabcoreFg = runtime.Fg_InitHandleSlaveAware(tslName, device, design, flags);
    } else {
        used = "Fg_InitHandle"; // takes no flags: they are dropped
        own.grabcoreFg = runtime.Fg_InitHandle(tslName, device, design);
    }
    if (own.grabcoreFg == nullptr) {
        log(levels::accessFailed, "error calling '", used, "' (tslName = '", tslName, "')");
        return fgError().setErr(callOr(FG_ERR_INIT, runtime.Fg_getLastErrorNumber, nullptr));
    }
    accessDeviceHandle(device);
    accessDesignHandle(design);
    return FG_OK;
}

int FgLoomWrapper::getParameterIdByName(const char* name) {
    return callOr(0, wrapperFg().Fg_getParameterIdByName, grabcoreFg(), name);
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
