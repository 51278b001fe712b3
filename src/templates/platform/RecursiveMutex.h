/** A recursive mutex and its guard. */
#ifndef TEMPLATES_PLATFORM_RECURSIVEMUTEX_H
#define TEMPLATES_PLATFORM_RECURSIVEMUTEX_H

#include "templates/platform/Guard.h"
#include "templates/platform/assertion.h"
#include "templates/platform/thread_annotations.h"

#include <atomic>
#include <cstdint>
#include <pthread.h>

namespace vexo::templates::platform {

/** A mutex that its holder may take again; each lock() needs an unlock(). Counts, as GenericLock does. */
class CAPABILITY("mutex") RecursiveMutex {
public:
    RecursiveMutex() {
        pthread_mutexattr_init(&m_attribute);
        pthread_mutexattr_settype(&m_attribute, PTHREAD_MUTEX_RECURSIVE);
        pthread_mutex_init(&m_mutex, &m_attribute);
    }
    RecursiveMutex(const RecursiveMutex&) = delete;
    RecursiveMutex& operator=(const RecursiveMutex&) = delete;
    /** The mutex must have no holder. */
    virtual ~RecursiveMutex() {
        assertThat(holders() == 0, "m_count == 0",
                   {"templates/platform/RecursiveMutex", 59,
                    "virtual vexo::templates::platform::RecursiveMutex::~RecursiveMutex()"});
        pthread_mutex_destroy(&m_mutex);
        pthread_mutexattr_destroy(&m_attribute);
    }

    void lock() ACQUIRE() NO_THREAD_SAFETY_ANALYSIS {
        pthread_mutex_lock(&m_mutex);
        m_count.fetch_add(1, std::memory_order_relaxed);
    }
    /** The mutex must have a holder. */
    void unlock() RELEASE() NO_THREAD_SAFETY_ANALYSIS {
        assertThat(m_count.fetch_sub(1, std::memory_order_relaxed) > 0, "m_count > 0",
                   {"templates/platform/RecursiveMutex", 92,
                    "void vexo::templates::platform::RecursiveMutex::unlock()"});
        pthread_mutex_unlock(&m_mutex);
    }
    /** How often the mutex is held now. */
    std::uint32_t holders() const { return m_count.load(std::memory_order_relaxed); }

private:
    pthread_mutex_t m_mutex;
    pthread_mutexattr_t m_attribute;
    std::atomic<std::uint32_t> m_count{0};
};

/** Holds a RecursiveMutex for a scope. */
class SCOPED_CAPABILITY RecursiveMutexGuard final : public patterns::Guard<RecursiveMutex*> {
public:
    explicit RecursiveMutexGuard(RecursiveMutex* mutex) ACQUIRE(mutex) NO_THREAD_SAFETY_ANALYSIS
        : Guard(mutex) {
        m_lock->lock();
    }
    ~RecursiveMutexGuard() override RELEASE() NO_THREAD_SAFETY_ANALYSIS {
        if (m_active) m_lock->unlock();
    }
};

} // namespace vexo::templates::platform

#endif
