/** For operations with failures that are ignored. */
#ifndef SUPPORT_QUIETLY_H
#define SUPPORT_QUIETLY_H

#include <cxxabi.h>

/** Performs an operation and ignores what it throws. A cancelled thread goes on unwinding. */
template <typename Action> void quietly(Action action) {
    try {
        action();
    } catch (const abi::__forced_unwind&) {
        throw;
    } catch (...) {
    }
}

#endif
