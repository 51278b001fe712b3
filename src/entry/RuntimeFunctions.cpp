#include "entry/RuntimeFunctions.h"

#include <cstddef>
#include <cstring>
#include <dlfcn.h>

namespace {

struct Entry {
    const char* name;
    std::size_t offset;
};

#define ENTRY(function)                                                                                      \
    { #function, offsetof(RuntimeFunctions, function) }

// In the order of the lookup.
constexpr Entry entries[] = {
    ENTRY(Fg_getAppletId),
    ENTRY(Fg_setParameter),
    ENTRY(Fg_setParameterWithType),
    ENTRY(Fg_getParameter),
    ENTRY(Fg_getParameterWithType),
    ENTRY(Fg_freeParameterStringWithType),
    ENTRY(Fg_saveConfig),
    ENTRY(Fg_loadConfig),
    ENTRY(Fg_Acquire),
    ENTRY(Fg_stopAcquire),
    ENTRY(Fg_getLastPicNumberBlockingEx),
    ENTRY(Fg_getLastPicNumberEx),
    ENTRY(Fg_FreeGrabber),
    ENTRY(Fg_getLastErrorNumber),
    ENTRY(Fg_getStatusEx),
    ENTRY(Fg_AcquireEx),
    ENTRY(Fg_stopAcquireEx),
    ENTRY(Fg_getParameterInfo),
    ENTRY(Fg_AllocShading),
    ENTRY(Fg_FreeShading),
    ENTRY(Shad_SetSubValueLine),
    ENTRY(Shad_SetMultValueLine),
    ENTRY(Shad_SetFixedPatternNoiseLine),
    ENTRY(Shad_GetMaxLine),
    ENTRY(Shad_GetAccess),
    ENTRY(Shad_FreeAccess),
    ENTRY(Shad_WriteActLine),
};

#undef ENTRY

} // namespace

RuntimeFunctions RuntimeFunctions::inert() {
    RuntimeFunctions functions;
    functions.Fg_setParameter = [](Fg_Struct*, int, const void*, int) { return 0; };
    functions.Fg_setParameterWithType = [](Fg_Struct*, int, const void*, int, int) { return 0; };
    functions.Fg_getParameter = [](Fg_Struct*, int, void*, int) { return 0; };
    functions.Fg_getParameterWithType = [](Fg_Struct*, int, void*, int, int) { return 0; };
    functions.Fg_freeParameterStringWithType = [](Fg_Struct*, int, void*, int, int) { return 0; };
    return functions;
}

void RuntimeFunctions::bind(void* library) {
    for (const Entry& entry : entries) {
        void* function = dlsym(library, entry.name);
        std::memcpy(reinterpret_cast<char*>(this) + entry.offset, &function, sizeof function);
    }
}
