/** How libraries are opened at run time. */
#ifndef SUPPORT_LIBRARY_FLAGS_H
#define SUPPORT_LIBRARY_FLAGS_H

#include <dlfcn.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define RUNTIME_BIND_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define RUNTIME_BIND_SANITIZED 1
#endif
#endif

/** The opened library finds its own symbols first, not those of the same name in the process. */
#ifdef RUNTIME_BIND_SANITIZED
constexpr int deepBind = 0; // these sanitizers do not support it
#undef RUNTIME_BIND_SANITIZED
#else
constexpr int deepBind = RTLD_DEEPBIND;
#endif

constexpr int runtimeBindFlags = RTLD_NOW | deepBind;

#endif
