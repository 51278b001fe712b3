/** Calls whose failures are dropped. */
#ifndef SUPPORT_QUIETLY_H
#define SUPPORT_QUIETLY_H

#include <cxxabi.h>

/** Calls `action` and drops any exception. A cancelled thread continues to unwind: its exception has no
 *  object, so the reference is null; inlined, the function would be checked for that all the same. */
template <typename Action> __attribute__((noinline, no_sanitize("null"))) void quietly(Action action) {
    try {
        action();
    } catch (const abi::__forced_unwind&) {
        throw;
    } catch (...) {
    }
}

#endif
