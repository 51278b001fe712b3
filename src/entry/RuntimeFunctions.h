/** The functions of the grabber runtime, bound by name. */
#ifndef ENTRY_RUNTIMEFUNCTIONS_H
#define ENTRY_RUNTIMEFUNCTIONS_H

#include "vexo/grabber_runtime.h"

/** An entry that this library binds but never calls: the runtime's complete set of names. */
using UncalledFunction = void();

/** Null where the runtime lacks a function. */
struct RuntimeFunctions {
    grabcore_getAppletId* Fg_getAppletId = nullptr;
    grabcore_setParameter* Fg_setParameter = nullptr;
    grabcore_setParameterWithType* Fg_setParameterWithType = nullptr;
    grabcore_getParameter* Fg_getParameter = nullptr;
    grabcore_getParameterWithType* Fg_getParameterWithType = nullptr;
    grabcore_freeParameterStringWithType* Fg_freeParameterStringWithType = nullptr;
    grabcore_saveConfig* Fg_saveConfig = nullptr;
    grabcore_loadConfig* Fg_loadConfig = nullptr;
    UncalledFunction* Fg_Acquire = nullptr;
    UncalledFunction* Fg_stopAcquire = nullptr;
    grabcore_getLastPicNumberEx* Fg_getLastPicNumberEx = nullptr;
    grabcore_getLastPicNumberBlockingEx* Fg_getLastPicNumberBlockingEx = nullptr;
    grabcore_FreeGrabber* Fg_FreeGrabber = nullptr;
    grabcore_getLastErrorNumber* Fg_getLastErrorNumber = nullptr;
    grabcore_getStatusEx* Fg_getStatusEx = nullptr;
    grabcore_AcquireEx* Fg_AcquireEx = nullptr;
    grabcore_stopAcquireEx* Fg_stopAcquireEx = nullptr;
    grabcore_getParameterInfo* Fg_getParameterInfo = nullptr;
    UncalledFunction* Fg_AllocShading = nullptr;
    UncalledFunction* Fg_FreeShading = nullptr;
    UncalledFunction* Shad_GetMaxLine = nullptr;
    UncalledFunction* Shad_SetSubValueLine = nullptr;
    UncalledFunction* Shad_SetMultValueLine = nullptr;
    UncalledFunction* Shad_SetFixedPatternNoiseLine = nullptr;
    UncalledFunction* Shad_GetAccess = nullptr;
    UncalledFunction* Shad_FreeAccess = nullptr;
    UncalledFunction* Shad_WriteActLine = nullptr;

    /** The parameter access functions answer 0 and do nothing: what an object without a runtime works on. */
    static RuntimeFunctions inert();

    /** Looks every function up in an opened library; a missing one becomes null, also over an inert one. */
    void bind(void* library);
};

#endif
