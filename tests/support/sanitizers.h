/** The sanitizers in this build, and their options. */
#ifndef TESTS_SUPPORT_SANITIZERS_H
#define TESTS_SUPPORT_SANITIZERS_H

#ifndef __has_feature
#define __has_feature(feature) 0
#endif

#ifdef __SANITIZE_THREAD__
inline constexpr bool underThreadSanitizer = true;
#else
inline constexpr bool underThreadSanitizer = __has_feature(thread_sanitizer);
#endif

#ifdef __SANITIZE_ADDRESS__
inline constexpr bool underAddressSanitizer = true;
#else
inline constexpr bool underAddressSanitizer = __has_feature(address_sanitizer);
#endif

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/asan_interface.h>
#include <sanitizer/lsan_interface.h>
#endif

/** In its scope, allocations are not reported as leaks. */
#ifdef __SANITIZE_ADDRESS__
using ExpectedLeak = __lsan::ScopedDisabler;
#else
struct ExpectedLeak {
    ExpectedLeak() {}
};
#endif

/** Call before a thread is cancelled: the address sanitizer does not notice that the frames of its stack end,
 *  and would report the cleanup code that reuses the memory. */
inline void expectStackToUnwind() {
#ifdef __SANITIZE_ADDRESS__
    __asan_handle_no_return();
#endif
}

#endif
