/** State of the wrapper base: the binding to the runtime, the handles, the trees and the last error. */
#ifndef ENTRY_FGLOOMWRAPPERPRIVATE_H
#define ENTRY_FGLOOMWRAPPERPRIVATE_H

#include "catalogue/Fg_ParameterInfo.h"
#include "entry/runtime/RuntimeFunctions.h"
#include "support/Fg_Error.h"

struct FgLoomWrapperPrivate {
    explicit FgLoomWrapperPrivate(int ports) : parameterInfo(ports) {}
    /** Closes the runtime's library, then unloads the design, then releases the rest. */
    ~FgLoomWrapperPrivate();
    FgLoomWrapperPrivate(const FgLoomWrapperPrivate&) = delete;
    FgLoomWrapperPrivate& operator=(const FgLoomWrapperPrivate&) = delete;

    RuntimeFunctions wrapperFg = RuntimeFunctions::inert();
    Fg_Struct* grabcoreFg = nullptr;
    LOOMdevice* boardHandle = nullptr;
    fpga_design* designHandle = nullptr;
    void* libraryHandle = nullptr;
    Fg_ParameterInfo parameterInfo;
    Fg_Error error;
};

#endif
