/** The one way into the producer: what each exported function does around its work. */
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

/** State of the library. The lock of the modules guards the system. */
struct Library {
    std::atomic<bool> isInitialized{false};
    std::shared_ptr<System> system; // null unless open

    static Library& the();
};

/** Does the work; what it throws becomes a code and the last error of the thread. */
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

/** The same, if the library is initialized. */
template <typename Work> GC_ERROR call(Work work) {
    return attempt([&work] {
        if (!Library::the().isInitialized)
            throw Error(GC_ERR_NOT_INITIALIZED, "the library is not initialized: call GCInitLib first");
        work();
    });
}

/** The same, while nothing is opened or closed. */
template <typename Work> GC_ERROR callAlone(Work work) {
    return call([&work] {
        const std::lock_guard lock(lockOfModules());
        work();
    });
}

} // namespace producer

#endif
