/**
 * The functions of the grabber runtime, libgrabcore5.so, that the applet binds by name.
 *
 * Function types, not functions: the applet exports functions of the same names. Every entry is optional.
 * A missing one counts as returning FG_ERR_NOT_AVAILABLE; a missing lookup by name finds nothing, a missing
 * parameter tree is null, a missing release of strings or of the handle is skipped. `fg` is the runtime's
 * inner handle. Access functions return 0 on success and a negative code on failure, and access the hardware
 * immediately.
 */
#ifndef VEXO_GRABBER_RUNTIME_H
#define VEXO_GRABBER_RUNTIME_H

#include "vexo/fg_api.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Creates the inner handle of a board with a loaded design; null on failure. `flags` as for Std_entry. */
typedef Fg_Struct* grabcore_InitHandleSlaveAware(const char* tslName, LOOMdevice* device, fpga_design* design,
                                                 int flags);
/** The same for runtimes without slave processes. */
typedef Fg_Struct* grabcore_InitHandle(const char* tslName, LOOMdevice* device, fpga_design* design);
/** Frees the inner handle. */
typedef int grabcore_FreeGrabber(Fg_Struct* fg);
/** The runtime's last error; with null, the reason why an init failed. */
typedef int grabcore_getLastErrorNumber(Fg_Struct* fg);

/** Id of a design parameter, 0 or less if the design has none of that name. */
typedef int grabcore_getParameterIdByName(Fg_Struct* fg, const char* name);
typedef int grabcore_setParameterWithType(Fg_Struct* fg, int id, const void* value, int dma, int type);
typedef int grabcore_getParameterWithType(Fg_Struct* fg, int id, void* value, int dma, int type);
typedef int grabcore_freeParameterStringWithType(Fg_Struct* fg, int id, void* value, int dma, int type);
typedef int grabcore_setParameter(Fg_Struct* fg, int id, const void* value, int dma);
typedef int grabcore_getParameter(Fg_Struct* fg, int id, void* value, int dma);
/** Root record of the runtime's own parameter tree, or null. */
typedef RegisterInfo* grabcore_getParameterInfo(Fg_Struct* fg, int index);

typedef int grabcore_saveConfig(Fg_Struct* fg, const char* file);
typedef int grabcore_loadConfig(Fg_Struct* fg, const char* file);

typedef int grabcore_getAppletId(Fg_Struct* fg, uintptr_t arg);
typedef int grabcore_AcquireEx(Fg_Struct* fg, int dma, intptr_t frames, int flags, void* memory);
typedef int grabcore_stopAcquireEx(Fg_Struct* fg, int dma, void* memory, int flags);
typedef int64_t grabcore_getStatusEx(Fg_Struct* fg, int what, intptr_t arg, int dma, void* memory);
typedef int64_t grabcore_getLastPicNumberEx(Fg_Struct* fg, int dma, void* memory);
typedef int64_t grabcore_getLastPicNumberBlockingEx(Fg_Struct* fg, intptr_t picture, int dma,
                                                    int timeoutSeconds, void* memory);

#ifdef __cplusplus
}
#endif
#endif
