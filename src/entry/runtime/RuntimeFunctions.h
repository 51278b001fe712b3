/** The functions of the grabber runtime, bound by name. */
#ifndef ENTRY_RUNTIME_RUNTIMEFUNCTIONS_H
#define ENTRY_RUNTIME_RUNTIMEFUNCTIONS_H

#include "vexo/grabber_runtime.h"

#include <type_traits>

/** An entry that this library binds but never calls: the runtime's complete set of names. */
using UncalledFunction = void();

/** Calls a function of the runtime; returns `missing` if the runtime lacks it. */
template <typename Result, typename... Parameters, typename... Arguments>
Result callOr(std::type_identity_t<Result> missing, Result (*function)(Parameters...),
              Arguments... arguments) {
    return function != nullptr ? function(arguments...) : missing;
}

/** Null where the runtime lacks a function. */
struct RuntimeFunctions {
#define RUNTIME_FUNCTION(name, type) type* name = nullptr;
#include "entry/runtime/runtime_functions.def"
#undef RUNTIME_FUNCTION

    /** Parameter access functions that return 0 and do nothing, for an object without a runtime. */
    static RuntimeFunctions inert();

    /** Looks up every function in an opened library; a missing one becomes null, even if it was inert. */
    void bind(void* library);
};

#endif
