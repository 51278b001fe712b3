/** The common wrapper of the exported functions. */
#ifndef PRODUCER_EXPORTS_CALL_H
#define PRODUCER_EXPORTS_CALL_H

#include "base/Answer.h"
#include "base/Error.h"
#include "base/LastError.h"
#include "modules/System.h"

#include <cxxabi.h>

#include <atomic>
#include <memory>
#include <new>

namespace producer {

/** State of the library. The lock of the modules guards `system`. */
struct Library {
    std::atomic<bool> isInitialized{false};
    std::shared_ptr<System> system; // null while closed

    static Library& the();
    /** Begins again in a forked child: the threads and sockets of what is open belong to the parent. */
    static void forget();
};

/** Runs the function; converts an exception to a code and stores it as the thread's last error. */
template <typename Work> GC_ERROR attempt(Work work) {
    GC_ERROR code = GC_ERR_ERROR;
    try {
        work();
        return GC_ERR_SUCCESS;
    } catch (const Error& error) {
        rememberError(code = error.code(), error.what());
    } catch (const std::bad_alloc&) {
        rememberError(code = GC_ERR_OUT_OF_MEMORY, "there is not enough memory");
    } catch (const std::exception& error) {
        rememberError(code, error.what());
    } catch (const abi::__forced_unwind&) {
        throw; // the thread is cancelled
    } catch (...) {
        rememberError(code, "the applet or the board threw something unknown");
    }
    return code;
}

/** The same, provided that the library is initialized. */
template <typename Work> GC_ERROR call(Work work) {
    return attempt([&work] {
        if (!Library::the().isInitialized)
            throw Error(GC_ERR_NOT_INITIALIZED, "the library is not initialized: call GCInitLib first");
        work();
    });
}

/** The same, while the relations between modules do not change. */
template <typename Work> GC_ERROR callAlone(Work work) {
    return call([&work] {
        const std::lock_guard lock(lockOfModules());
        work();
    });
}

} // namespace producer

#endif
