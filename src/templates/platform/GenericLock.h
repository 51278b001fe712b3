/** The abstract lock and its guard. */
#ifndef TEMPLATES_PLATFORM_GENERICLOCK_H
#define TEMPLATES_PLATFORM_GENERICLOCK_H

#include "templates/platform/Guard.h"
#include "templates/platform/assertion.h"
#include "templates/platform/thread_annotations.h"

#include <atomic>
#include <cstdint>

namespace vexo::templates::patterns {

/**
 * A lock that counts its holders, so that misuse ends in an assertion.
 *
 * The order of the virtual operations is the vtable layout and must not change.
 */
class CAPABILITY("mutex") GenericLock {
public:
    GenericLock() = default;
    GenericLock(const GenericLock&) = delete;
    GenericLock& operator=(const GenericLock&) = delete;

    /** The lock must have no holder. */
    virtual ~GenericLock() {
        platform::assertThat(!isLocked(), "m_count == 0",
                             {"templates/patterns/GenericLock", 48,
                              "virtual vexo::templates::patterns::GenericLock::~GenericLock()"});
    }
    /** Blocks until the lock is taken. Does not count. */
    virtual void lock() ACQUIRE() = 0;
    /** Takes the lock if it becomes free within `timeout`. Does not count. */
    virtual bool tryLock(std::uint32_t timeout) TRY_ACQUIRE(true) = 0;
    virtual void unlock() RELEASE() = 0;

    /** Takes the lock and counts, even if taking it failed. */
    void enter() ACQUIRE() {
        lock();
        countIn();
    }
    /** Counts down and releases the lock. There must be a holder. */
    void leave() RELEASE() {
        countOut();
        unlock();
    }
    bool isLocked() const { return m_count.load(std::memory_order_relaxed) > 0; }

protected:
    // The count only shows misuse; the lock itself orders what it protects.
    void countIn() { m_count.fetch_add(1, std::memory_order_relaxed); }
    void countOut() { assertHeld(m_count.fetch_sub(1, std::memory_order_relaxed)); }
    // For a holder while no other thread changes the count; avoids a locked instruction.
    void countInAlone() {
        m_count.store(m_count.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }
    void countOutAlone() {
        const std::uint32_t count = m_count.load(std::memory_order_relaxed);
        assertHeld(count);
        m_count.store(count - 1, std::memory_order_relaxed);
    }

private:
    static void assertHeld(std::uint32_t count) {
        platform::assertThat(
            count > 0, "m_count > 0",
            {"templates/patterns/GenericLock", 70, "void vexo::templates::patterns::GenericLock::leave()"});
    }

    std::atomic<std::uint32_t> m_count{0};
};

/**
 * Holds a lock for a scope if `autoLock`, and deletes it at the end if `ownsLock`.
 *
 * Whether the lock is taken is known at run time only, so clang's analysis does not follow it.
 */
class GenericLockGuard : public Guard<GenericLock*> {
public:
    GenericLockGuard(GenericLock* lock, bool ownsLock, bool autoLock) NO_THREAD_SAFETY_ANALYSIS
        : Guard(lock),
          m_ownsLock(ownsLock),
          m_autoLock(autoLock) {
        if (m_autoLock) m_lock->enter();
    }
    // Always inlined: where a derived guard has released the lock, the compiler removes this.
    [[gnu::always_inline]] ~GenericLockGuard() override NO_THREAD_SAFETY_ANALYSIS {
        if (m_autoLock && m_active && m_lock->isLocked()) m_lock->leave();
        if (m_ownsLock) delete m_lock;
    }

protected:
    struct TakenByDerived {};
    /** For a guard that takes and releases the lock by its own type, without a virtual call. */
    GenericLockGuard(GenericLock* lock, TakenByDerived) : Guard(lock), m_ownsLock(false), m_autoLock(true) {}

private:
    bool m_ownsLock;
    bool m_autoLock;
};

} // namespace vexo::templates::patterns

#endif
