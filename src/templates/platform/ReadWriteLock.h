/** A lock for many readers or one writer, and its guard. */
#ifndef TEMPLATES_PLATFORM_READWRITELOCK_H
#define TEMPLATES_PLATFORM_READWRITELOCK_H

#include "templates/platform/Guard.h"
#include "templates/platform/thread_annotations.h"

#include <cstdint>
#include <pthread.h>
#include <type_traits>

namespace vexo::templates::platform {

/** A lock within one process that readers share and a writer holds exclusively. */
class CAPABILITY("mutex") ReadWriteLock {
public:
    ReadWriteLock() {
        pthread_rwlockattr_t attribute;
        pthread_rwlockattr_init(&attribute);
        pthread_rwlockattr_setpshared(&attribute, PTHREAD_PROCESS_PRIVATE);
        pthread_rwlock_init(&m_lock, &attribute);
        pthread_rwlockattr_destroy(&attribute);
    }
    ReadWriteLock(const ReadWriteLock&) = delete;
    ReadWriteLock& operator=(const ReadWriteLock&) = delete;
    virtual ~ReadWriteLock() { pthread_rwlock_destroy(&m_lock); }

    void lockRead() ACQUIRE_SHARED() NO_THREAD_SAFETY_ANALYSIS { pthread_rwlock_rdlock(&m_lock); }
    void lockWrite() ACQUIRE() NO_THREAD_SAFETY_ANALYSIS { pthread_rwlock_wrlock(&m_lock); }
    void unlock() RELEASE_GENERIC() NO_THREAD_SAFETY_ANALYSIS { pthread_rwlock_unlock(&m_lock); }

private:
    pthread_rwlock_t m_lock;
};

/**
 * Holds a ReadWriteLock for a scope.
 *
 * The modes have their own types, so that the analysis knows which lock is held; it cannot follow a mode that
 * is known only at run time.
 */
class SCOPED_CAPABILITY ReadWriteLockGuard final : public patterns::Guard<ReadWriteLock*> {
public:
    using Read = std::integral_constant<std::uint32_t, 1>;
    using Write = std::integral_constant<std::uint32_t, 2>;
    static constexpr Read read{};
    static constexpr Write write{};

    ReadWriteLockGuard(ReadWriteLock* lock, Read mode) ACQUIRE_SHARED(lock) NO_THREAD_SAFETY_ANALYSIS
        : ReadWriteLockGuard(lock, mode.value) {}
    ReadWriteLockGuard(ReadWriteLock* lock, Write mode) ACQUIRE(lock) NO_THREAD_SAFETY_ANALYSIS
        : ReadWriteLockGuard(lock, mode.value) {}
    /** A mode that is neither read nor write takes nothing; the caller must then hold the lock already. */
    ReadWriteLockGuard(ReadWriteLock* lock, std::uint32_t mode) NO_THREAD_SAFETY_ANALYSIS : Guard(lock),
                                                                                            m_mode(mode) {
        if (m_mode == read) m_lock->lockRead();
        if (m_mode == write) m_lock->lockWrite();
    }
    /** Releases the lock whatever the mode. */
    ~ReadWriteLockGuard() override RELEASE_GENERIC() NO_THREAD_SAFETY_ANALYSIS {
        if (m_active) m_lock->unlock();
    }

private:
    std::uint32_t m_mode;
};

} // namespace vexo::templates::platform

#endif
