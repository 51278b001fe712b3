/*
 * The exported names of libgrabcore5.so.
 *
 * Each is an indirect function: dlsym asks its resolver, at every look-up, where the function is, and a
 * hidden one is nowhere, so that dlsym answers null. The library is therefore for dlopen and dlsym only;
 * nothing in it may refer to these names itself. Resolvers run while the loader is at work and stay out of
 * the sanitizers' hands.
 */

#include "Design.h"
#include "design_tables.h"
#include "runtime.h"

#define RUNTIME_ENTRY(name, type, function)                                                                  \
    extern "C" __attribute__((no_sanitize("address", "undefined", "thread"), used))                          \
    type* vboard_resolve_##name() {                                                                          \
        return vboard::isEntryHidden(vboard::entry(#name)) ? nullptr : &vboard::runtime::function;           \
    }                                                                                                        \
    extern "C" __attribute__((ifunc("vboard_resolve_" #name))) type name;

RUNTIME_ENTRY(Fg_InitHandleSlaveAware, grabcore_InitHandleSlaveAware, initHandleSlaveAware)
RUNTIME_ENTRY(Fg_InitHandle, grabcore_InitHandle, initHandle)
RUNTIME_ENTRY(Fg_FreeGrabber, grabcore_FreeGrabber, freeGrabber)
RUNTIME_ENTRY(Fg_getLastErrorNumber, grabcore_getLastErrorNumber, getLastErrorNumber)
RUNTIME_ENTRY(Fg_getParameterIdByName, grabcore_getParameterIdByName, getParameterIdByName)
RUNTIME_ENTRY(Fg_setParameterWithType, grabcore_setParameterWithType, setParameterWithType)
RUNTIME_ENTRY(Fg_getParameterWithType, grabcore_getParameterWithType, getParameterWithType)
RUNTIME_ENTRY(Fg_freeParameterStringWithType, grabcore_freeParameterStringWithType,
              freeParameterStringWithType)
RUNTIME_ENTRY(Fg_setParameter, grabcore_setParameter, setParameter)
RUNTIME_ENTRY(Fg_getParameter, grabcore_getParameter, getParameter)
RUNTIME_ENTRY(Fg_getParameterInfo, grabcore_getParameterInfo, getParameterInfo)
RUNTIME_ENTRY(Fg_saveConfig, grabcore_saveConfig, saveConfig)
RUNTIME_ENTRY(Fg_loadConfig, grabcore_loadConfig, loadConfig)
RUNTIME_ENTRY(Fg_getAppletId, grabcore_getAppletId, getAppletId)
RUNTIME_ENTRY(Fg_AcquireEx, grabcore_AcquireEx, acquireEx)
RUNTIME_ENTRY(Fg_stopAcquireEx, grabcore_stopAcquireEx, stopAcquireEx)
RUNTIME_ENTRY(Fg_getStatusEx, grabcore_getStatusEx, getStatusEx)
RUNTIME_ENTRY(Fg_getLastPicNumberEx, grabcore_getLastPicNumberEx, getLastPicNumberEx)
RUNTIME_ENTRY(Fg_getLastPicNumberBlockingEx, grabcore_getLastPicNumberBlockingEx, getLastPicNumberBlockingEx)
