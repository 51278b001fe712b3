/** The functions of the runtime, under names that nobody looks up. */
#ifndef VIRTUAL_BOARD_RUNTIME_H
#define VIRTUAL_BOARD_RUNTIME_H

#include "vexo/grabber_runtime.h"

namespace vboard::runtime {

grabcore_InitHandleSlaveAware initHandleSlaveAware;
grabcore_InitHandle initHandle;
grabcore_FreeGrabber freeGrabber;
grabcore_getLastErrorNumber getLastErrorNumber;
grabcore_getParameterIdByName getParameterIdByName;
grabcore_setParameterWithType setParameterWithType;
grabcore_getParameterWithType getParameterWithType;
grabcore_freeParameterStringWithType freeParameterStringWithType;
grabcore_setParameter setParameter;
grabcore_getParameter getParameter;
grabcore_getParameterInfo getParameterInfo;
grabcore_saveConfig saveConfig;
grabcore_loadConfig loadConfig;
grabcore_getAppletId getAppletId;
grabcore_AcquireEx acquireEx;
grabcore_stopAcquireEx stopAcquireEx;
grabcore_getStatusEx getStatusEx;
grabcore_getLastPicNumberEx getLastPicNumberEx;
grabcore_getLastPicNumberBlockingEx getLastPicNumberBlockingEx;

} // namespace vboard::runtime

#endif
