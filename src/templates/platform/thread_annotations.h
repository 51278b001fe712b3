/** Attributes for clang's thread safety analysis; empty for other compilers. */
#ifndef TEMPLATES_PLATFORM_THREAD_ANNOTATIONS_H
#define TEMPLATES_PLATFORM_THREAD_ANNOTATIONS_H

#if defined(__clang__)
#define THREAD_ANNOTATION(attribute) __attribute__((attribute))
#else
#define THREAD_ANNOTATION(attribute)
#endif

#define CAPABILITY(kind) THREAD_ANNOTATION(capability(kind))
#define SCOPED_CAPABILITY THREAD_ANNOTATION(scoped_lockable)
#define GUARDED_BY(lock) THREAD_ANNOTATION(guarded_by(lock))
#define ACQUIRE(...) THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define ACQUIRE_SHARED(...) THREAD_ANNOTATION(acquire_shared_capability(__VA_ARGS__))
#define TRY_ACQUIRE(...) THREAD_ANNOTATION(try_acquire_capability(__VA_ARGS__))
#define RELEASE(...) THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define RELEASE_GENERIC(...) THREAD_ANNOTATION(release_generic_capability(__VA_ARGS__))
/** For the bodies of locks and guards: the system functions that they call have no attributes. */
#define NO_THREAD_SAFETY_ANALYSIS THREAD_ANNOTATION(no_thread_safety_analysis)

#endif
