/*
 * Every type of the public headers as the argument of one function, so that the debug information of a library
 * built from it describes all of them, including those passed as a void pointer or bound by name.
 */
#include "vexo/board_access.h"
#include "vexo/design_loader.h"
#include "vexo/fg_api.h"
#include "vexo/fg_errors.h"
#include "vexo/fg_parameters.h"
#include "vexo/grabber_runtime.h"
#include "vexo/logging_dispatcher.h"
#include "vexo/register_info.h"

struct PublicTypes {
    RegisterInfo registerInfo;
    FieldParameterInt_s fieldInt;
    FieldParameterDouble_s fieldDouble;
    FieldParameterAccess fieldAccess;
    FgEventRecord eventRecord;
    TslEvent tslEvent;
    LoggingDispatcherDescriptor dispatcher;

    enum RegisterInfoKind kind;
    enum RegisterInfoAccess access;
    enum FgInfoCode infoCode;
    enum FgParameterId parameterId;
    enum FgParameterConstant parameterConstant;
    enum FgResult result;

    grabcore_InitHandleSlaveAware* initHandleSlaveAware;
    grabcore_InitHandle* initHandle;
    grabcore_FreeGrabber* freeGrabber;
    grabcore_getLastErrorNumber* getLastErrorNumber;
    grabcore_getParameterIdByName* getParameterIdByName;
    grabcore_setParameterWithType* setParameterWithType;
    grabcore_getParameterWithType* getParameterWithType;
    grabcore_freeParameterStringWithType* freeParameterStringWithType;
    grabcore_setParameter* setParameter;
    grabcore_getParameter* getParameter;
    grabcore_getParameterInfo* getParameterInfo;
    grabcore_saveConfig* saveConfig;
    grabcore_loadConfig* loadConfig;
    grabcore_getAppletId* getAppletId;
    grabcore_AcquireEx* acquireEx;
    grabcore_stopAcquireEx* stopAcquireEx;
    grabcore_getStatusEx* getStatusEx;
    grabcore_getLastPicNumberEx* getLastPicNumberEx;
    grabcore_getLastPicNumberBlockingEx* getLastPicNumberBlockingEx;
};

__attribute__((visibility("default"))) void publicTypes(const struct PublicTypes* types);

void publicTypes(const struct PublicTypes* types) { (void)types; }
