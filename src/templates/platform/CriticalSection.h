/** A lock for the calls of several threads on one object, and its guard. */
#ifndef TEMPLATES_PLATFORM_CRITICALSECTION_H
#define TEMPLATES_PLATFORM_CRITICALSECTION_H

#include "templates/platform/GenericLock.h"

#include <atomic>
#include <pthread.h>

namespace vexo::templates::platform {

/**
 * A mutex that is not recursive.
 *
 * A nested enter() by the thread that holds it does not block: the mutex's error is ignored and the count
 * still rises. The nested leave() releases the mutex, and the outer leave() then releases
 * nothing.
 */
class CAPABILITY("mutex") CriticalSection final : public patterns::GenericLock {
public:
    CriticalSection() {
        pthread_mutexattr_t attribute;
        pthread_mutexattr_init(&attribute);
        pthread_mutexattr_settype(&attribute, PTHREAD_MUTEX_ERRORCHECK);
        pthread_mutex_init(&m_embedded, &attribute);
        pthread_mutexattr_destroy(&attribute);
    }
    ~CriticalSection() override {
        if (!m_external) pthread_mutex_destroy(m_mutex);
    }

    void lock() override ACQUIRE() NO_THREAD_SAFETY_ANALYSIS {
        if (pthread_mutex_lock(m_mutex) != 0) m_wasNested.store(true, std::memory_order_relaxed);
    }
    /** Never waits: the time-out is ignored. */
    bool tryLock(std::uint32_t) override TRY_ACQUIRE(true) NO_THREAD_SAFETY_ANALYSIS {
        return pthread_mutex_trylock(m_mutex) == 0;
    }
    void unlock() override RELEASE() NO_THREAD_SAFETY_ANALYSIS { pthread_mutex_unlock(m_mutex); }

    // As in the base, with the calls bound at compile time, as every routed access runs this code. The mutex
    // protects the count too, until a thread nests: its outer leave() then counts without holding the mutex.
    void enter() ACQUIRE() {
        lock();
        m_wasNested.load(std::memory_order_relaxed) ? countIn() : countInAlone();
    }
    void leave() RELEASE() {
        m_wasNested.load(std::memory_order_relaxed) ? countOut() : countOutAlone();
        unlock();
    }

private:
    bool m_external = false;              // when true, m_mutex is owned elsewhere
    std::atomic<bool> m_wasNested{false}; // set by a holder, so that the next one sees it
    pthread_mutex_t m_embedded;
    pthread_mutex_t* m_mutex = &m_embedded;
};

/** Holds a CriticalSection for a scope. */
class SCOPED_CAPABILITY CriticalSectionGuard final : public patterns::GenericLockGuard {
public:
    explicit CriticalSectionGuard(CriticalSection* lock) ACQUIRE(lock) NO_THREAD_SAFETY_ANALYSIS
        : GenericLockGuard(lock, TakenByDerived{}) {
        lock->enter();
    }
    [[gnu::always_inline]] ~CriticalSectionGuard() override RELEASE() NO_THREAD_SAFETY_ANALYSIS {
        auto* lock = static_cast<CriticalSection*>(m_lock);
        if (lock->isLocked()) lock->leave();
        m_active = false;
    }
};

} // namespace vexo::templates::platform

#endif
