#include "entry/runtime/RuntimeFunctions.h"

#include <cstddef>
#include <cstring>
#include <dlfcn.h>

namespace {

struct Entry {
    const char* name;
    std::size_t offset;
};

constexpr Entry entries[] = {
#define RUNTIME_FUNCTION(name, type) {#name, offsetof(RuntimeFunctions, name)},
#include "entry/runtime/runtime_functions.def"
#undef RUNTIME_FUNCTION
};

} // namespace

RuntimeFunctions RuntimeFunctions::inert() {
    RuntimeFunctions functions;
    functions.Fg_getParameterIdByName = [](Fg_Struct*, const char*) { return 0; };
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
