/*
 * The exported names of libgrabcore5.so.
 *
 * Each is an indirect function: at every look-up, dlsym calls its resolver for the address. The resolver of a
 * hidden function returns null, and so does dlsym. The library is therefore for dlopen and dlsym only, and its
 * own code must not refer to these names. Resolvers run inside the loader, so they are not instrumented by the
 * sanitizers.
 */

#include "virtual_board/tables/runtime_entries.h"
#include "virtual_board/board/Design.h"
#include "virtual_board/libraries/runtime.h"

#define RUNTIME_ENTRY(name, type, function, answer)                                                          \
    extern "C" __attribute__((no_sanitize("address", "undefined", "thread"), used))                          \
    type* vboard_resolve_##name() {                                                                          \
        return vboard::isEntryHidden(vboard::entry(#name)) ? nullptr : &vboard::runtime::function;           \
    }                                                                                                        \
    extern "C" __attribute__((ifunc("vboard_resolve_" #name))) type name;

#include "virtual_board/tables/runtime_entries.def"
