/** A mutex and its guard, with attributes for clang's thread safety analysis. */
#ifndef VIRTUAL_BOARD_BOARD_MUTEX_H
#define VIRTUAL_BOARD_BOARD_MUTEX_H

#include <chrono>
#include <mutex>
#include <thread>

#if defined(__clang__)
#define THREAD_ANNOTATION(attribute) __attribute__((attribute))
#else
#define THREAD_ANNOTATION(attribute) // empty for other compilers
#endif

#define CAPABILITY(kind) THREAD_ANNOTATION(capability(kind))
#define SCOPED_CAPABILITY THREAD_ANNOTATION(scoped_lockable)
#define GUARDED_BY(lock) THREAD_ANNOTATION(guarded_by(lock))
#define ACQUIRE(...) THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define RELEASE(...) THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define REQUIRES(...) THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define EXCLUDES(...) THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
#define RETURN_CAPABILITY(lock) THREAD_ANNOTATION(lock_returned(lock))
#define NO_THREAD_SAFETY_ANALYSIS THREAD_ANNOTATION(no_thread_safety_analysis)

namespace vboard {

/** The standard library's mutex with attributes, which its own type lacks. */
class CAPABILITY("mutex") Mutex {
public:
    void lock() ACQUIRE() NO_THREAD_SAFETY_ANALYSIS { m_mutex.lock(); }
    void unlock() RELEASE() NO_THREAD_SAFETY_ANALYSIS { m_mutex.unlock(); }
    /** Unlocks the mutex for this time. The guarded data may have changed afterwards. */
    template <typename Duration>
    void sleepUnlocked(Duration duration) REQUIRES(this) NO_THREAD_SAFETY_ANALYSIS {
        struct Unlocked {
            explicit Unlocked(std::mutex& itsMutex) : mutex(itsMutex) { mutex.unlock(); }
            ~Unlocked() { mutex.lock(); } // also if the thread ends while it sleeps
            Unlocked(const Unlocked&) = delete;
            Unlocked& operator=(const Unlocked&) = delete;
            std::mutex& mutex;
        };
        const Unlocked unlocked(m_mutex);
        std::this_thread::sleep_for(duration);
    }

private:
    std::mutex m_mutex;
};

class SCOPED_CAPABILITY MutexLock {
public:
    explicit MutexLock(Mutex& mutex) ACQUIRE(mutex) : m_mutex(mutex) { m_mutex.lock(); }
    ~MutexLock() RELEASE() { m_mutex.unlock(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

private:
    Mutex& m_mutex;
};

} // namespace vboard

#endif
