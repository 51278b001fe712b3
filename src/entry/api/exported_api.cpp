// The exported functions. Each checks its handle, then evaluates one expression.
//
// None is noexcept and none catches anything: exceptions of an operation propagate to the caller.

#include "vexo/fg_api.h"

#include "entry/FgLoomWrapper.h"
#include "entry/LiveObjects.h"
#include "entry/runtime/RuntimeFunctions.h"

#include <cstring>

/** To this library, a caller's handle is its first word. */
struct Fg_Struct_s {
    FgLoomWrapper* wrapper;
};

namespace {

/**
 * Calls `operation` with the object of a handle. Returns `refused` for an invalid handle: one that is null or
 * has a first word that does not point to an object of this library.
 */
template <typename Operation, typename Result>
Result withWrapper(const Fg_Struct* fg, Result refused, Operation operation) {
    if (fg == nullptr || !LiveObjects::has(fg->wrapper)) return refused;
    return operation(*fg->wrapper);
}

template <typename Operation> int withWrapper(const Fg_Struct* fg, Operation operation) {
    return withWrapper(fg, static_cast<int>(FG_ERR_INVALID_HANDLE), operation);
}

/** Whether the runtime has a function, and an inner handle to call it with. */
bool isBound(const FgLoomWrapper& wrapper, auto RuntimeFunctions::*entry) {
    return wrapper.wrapperFg().*entry != nullptr && wrapper.grabcoreFg() != nullptr;
}

/** Calls a function of the runtime with the inner handle; after a failure its last error is stored. */
template <typename Result, typename... Parameters, typename... Arguments>
Result forward(const Fg_Struct* fg, Result (*RuntimeFunctions::*entry)(Fg_Struct*, Parameters...),
               Arguments... arguments) {
    return withWrapper(fg, static_cast<Result>(FG_ERR_INVALID_HANDLE), [&](FgLoomWrapper& wrapper) -> Result {
        if (!isBound(wrapper, entry)) {
            wrapper.setError(FG_ERR_NOT_AVAILABLE);
            return FG_ERR_NOT_AVAILABLE;
        }
        const Result result = (wrapper.wrapperFg().*entry)(wrapper.grabcoreFg(), arguments...);
        wrapper.setError(result < 0 ? wrapper.Fg_getLastErrorNumberLoom() : FG_OK);
        return result;
    });
}

/** For the shading operations: stores the result as the last error in any case. */
template <typename Operation> int storing(const Fg_Struct* fg, Operation operation) {
    return withWrapper(fg, [&](FgLoomWrapper& wrapper) {
        const int result = operation(wrapper);
        wrapper.setError(result);
        return result;
    });
}

void clearLongNumber(void* value, FgParamTypes type) {
    if (type == FG_PARAM_INT64 || type == FG_PARAM_UINT64) std::memset(value, 0, sizeof(std::uint64_t));
}

} // namespace

int Fg_getAppletId(Fg_Struct* fg, std::uintptr_t arg) {
    return forward(fg, &RuntimeFunctions::Fg_getAppletId, arg);
}

int Fg_AcquireEx(Fg_Struct* fg, int dma, std::intptr_t frames, int flags, void* memory) {
    return forward(fg, &RuntimeFunctions::Fg_AcquireEx, dma, frames, flags, memory);
}

int Fg_stopAcquireEx(Fg_Struct* fg, int dma, void* memory, int flags) {
    return forward(fg, &RuntimeFunctions::Fg_stopAcquireEx, dma, memory, flags);
}

std::int64_t Fg_getStatusEx(Fg_Struct* fg, int what, std::intptr_t arg, int dma, void* memory) {
    return forward(fg, &RuntimeFunctions::Fg_getStatusEx, what, arg, dma, memory);
}

std::int64_t Fg_getLastPicNumberEx(Fg_Struct* fg, int dma, void* memory) {
    return forward(fg, &RuntimeFunctions::Fg_getLastPicNumberEx, dma, memory);
}

std::int64_t Fg_getLastPicNumberBlockingEx(Fg_Struct* fg, std::intptr_t picture, int dma, int timeoutSeconds,
                                           void* memory) {
    return forward(fg, &RuntimeFunctions::Fg_getLastPicNumberBlockingEx, picture, dma, timeoutSeconds,
                   memory);
}

int Fg_setParameterWithType(Fg_Struct* fg, int id, const void* value, int dma, FgParamTypes type) {
    return withWrapper(
        fg, [&](FgLoomWrapper& wrapper) { return wrapper.Fg_setParameterWithType(id, value, dma, type); });
}

int Fg_getParameterWithType(Fg_Struct* fg, int id, void* value, int dma, FgParamTypes type) {
    return withWrapper(fg, [&](FgLoomWrapper& wrapper) {
        if (value != nullptr) clearLongNumber(value, type);
        return wrapper.Fg_getParameterWithType(id, value, dma, type);
    });
}

int Fg_freeParameterStringWithType(Fg_Struct* fg, int id, void* value, int dma, FgParamTypes type) {
    return withWrapper(fg, [&](FgLoomWrapper& wrapper) {
        return type == FG_PARAM_ALLOCATED_STRING
                   ? wrapper.Fg_freeParameterStringWithType(id, value, dma, type)
                   : static_cast<int>(FG_ERR_STRING_TAG);
    });
}

int Fg_getNrOfParameter(Fg_Struct* fg) {
    return withWrapper(fg, [](FgLoomWrapper& wrapper) { return wrapper.Fg_getNrOfParameter(); });
}

const char* Fg_getParameterName(Fg_Struct* fg, int index) {
    return withWrapper(fg, static_cast<const char*>(nullptr),
                       [&](FgLoomWrapper& wrapper) { return wrapper.Fg_getParameterName(index); });
}

int Fg_getParameterId(Fg_Struct* fg, int index) {
    return withWrapper(fg, [&](FgLoomWrapper& wrapper) { return wrapper.Fg_getParameterId(index); });
}

int Fg_getParameterIdByName(Fg_Struct* fg, const char* name) {
    return withWrapper(fg, [&](FgLoomWrapper& wrapper) { return wrapper.Fg_getParameterIdByName(name); });
}

int Fg_saveConfig(Fg_Struct* fg, const char* file) {
    return withWrapper(
        fg, [&](FgLoomWrapper& wrapper) { return wrapper.Fg_saveConfig(wrapper.grabcoreFg(), file); });
}

int Fg_loadConfig(Fg_Struct* fg, const char* file) {
    return withWrapper(
        fg, [&](FgLoomWrapper& wrapper) { return wrapper.Fg_loadConfig(wrapper.grabcoreFg(), file); });
}

int Fg_getParameterInfoXML(Fg_Struct* fg, int index, char* buffer, unsigned long* size) {
    return withWrapper(
        fg, [&](FgLoomWrapper& wrapper) { return wrapper.Fg_getParameterInfoXML(fg, index, buffer, size); });
}

std::uint64_t Fg_getEventMask(Fg_Struct* fg, const char* name) {
    return withWrapper(fg, std::uint64_t{0},
                       [&](FgLoomWrapper& wrapper) { return wrapper.Fg_getEventMask(name); });
}

const char* Fg_getEventName(Fg_Struct* fg, std::uint64_t mask) {
    return withWrapper(fg, static_cast<const char*>(nullptr),
                       [&](FgLoomWrapper& wrapper) { return wrapper.Fg_getEventName(mask); });
}

int Fg_getLastErrorNumber(Fg_Struct* fg) {
    return withWrapper(fg, [](FgLoomWrapper& wrapper) { return wrapper.Fg_getLastErrorNumber(); });
}

RegisterInfo* Fg_getParameterInfo(Fg_Struct* fg, int index) {
    return withWrapper(fg, static_cast<RegisterInfo*>(nullptr), [&](FgLoomWrapper& wrapper) {
        // For an object without a runtime, the tree is queried through Info.
        return isBound(wrapper, &RuntimeFunctions::Fg_getParameterInfo) ? wrapper.Fg_getParameterInfo(index)
                                                                        : nullptr;
    });
}

int Fg_FreeGrabber(Fg_Struct* fg) {
    return withWrapper(fg, [&](FgLoomWrapper& wrapper) {
        const int result = FgLoomWrapper::end(&wrapper);
        fg->wrapper = nullptr;
        return result;
    });
}

ShadingMaster* Fg_AllocShading(Fg_Struct* fg, int set, int dma) {
    return withWrapper(fg, static_cast<ShadingMaster*>(nullptr), [&](FgLoomWrapper& wrapper) {
        ShadingMaster* shading = wrapper.Fg_AllocShading(set, dma);
        wrapper.setError(shading != nullptr ? FG_OK : FG_ERR_PARSER);
        return shading;
    });
}

int Fg_FreeShading(Fg_Struct* fg, ShadingMaster* shading) {
    return storing(fg, [&](FgLoomWrapper& wrapper) { return wrapper.Fg_FreeShading(shading); });
}

int Shad_SetSubValueLine(Fg_Struct* fg, ShadingMaster* shading, int x, int channel, float value) {
    return storing(
        fg, [&](FgLoomWrapper& wrapper) { return wrapper.Shad_SetSubValueLine(shading, x, channel, value); });
}

int Shad_SetMultValueLine(Fg_Struct* fg, ShadingMaster* shading, int x, int channel, float value) {
    return storing(fg, [&](FgLoomWrapper& wrapper) {
        return wrapper.Shad_SetMultValueLine(shading, x, channel, value);
    });
}

int Shad_SetFixedPatternNoiseLine(Fg_Struct* fg, ShadingMaster* shading, int x, int channel, int on) {
    return storing(fg, [&](FgLoomWrapper& wrapper) {
        return wrapper.Shad_SetFixedPatternNoiseLine(shading, x, channel, on);
    });
}

int Shad_GetMaxLine(Fg_Struct* fg, ShadingMaster* shading) {
    return storing(fg, [&](FgLoomWrapper& wrapper) { return wrapper.Shad_GetMaxLine(shading); });
}

int Shad_GetAccess(Fg_Struct* fg, ShadingMaster* shading) {
    return storing(fg, [&](FgLoomWrapper& wrapper) { return wrapper.Shad_GetAccess(shading); });
}

int Shad_FreeAccess(Fg_Struct* fg, ShadingMaster* shading) {
    return storing(fg, [&](FgLoomWrapper& wrapper) { return wrapper.Shad_FreeAccess(shading); });
}

int Shad_WriteActLine(Fg_Struct* fg, ShadingMaster* shading, int line) {
    return storing(fg, [&](FgLoomWrapper& wrapper) { return wrapper.Shad_WriteActLine(shading, line); });
}
