/** For what may fail without anybody being told. */
#ifndef SUPPORT_QUIETLY_H
#define SUPPORT_QUIETLY_H

#include <exception>

/**
 * Performs something and drops the code or the exception that it throws. A cancelled thread goes on
 * unwinding.
 */
template <typename Action> void quietly(Action action) {
    try {
        action();
    } catch (int) {
    } catch (const std::exception&) {
    }
}

#endif
