/** The lock for static data. */
#ifndef TEMPLATES_PLATFORM_SPINLOCKVARIABLEGUARD_H
#define TEMPLATES_PLATFORM_SPINLOCKVARIABLEGUARD_H

#include <atomic>
#include <cstdint>
#include <pthread.h>
#include <sched.h>

namespace vexo::templates::platform {

/** 0 while free. Constant-initialised, so it works while the library starts and ends. */
using SpinVariable = std::atomic<std::uint32_t>;
/** The thread that holds a spin variable; 0 while there is none. */
using SpinOwner = std::atomic<pthread_t>;

/**
 * Holds a spin variable for a scope.
 *
 * With an owner variable the holder may enter again: the inner guard takes and releases nothing. Waiting
 * yields the processor and has no time-out; hold it for short work only.
 */
class SpinLockVariableGuard {
public:
    SpinLockVariableGuard(SpinVariable* spin, SpinOwner* owner) : m_spin(spin), m_owner(owner) {
        if (heldByCaller(m_owner)) return;
        while (m_spin->exchange(1, std::memory_order_acquire) == 1)
            sched_yield();
        if (m_owner != nullptr) m_owner->store(pthread_self(), std::memory_order_relaxed);
        m_locked = true;
    }
    SpinLockVariableGuard(const SpinLockVariableGuard&) = delete;
    SpinLockVariableGuard& operator=(const SpinLockVariableGuard&) = delete;
    virtual ~SpinLockVariableGuard() {
        if (!m_locked) return;
        if (m_owner != nullptr) m_owner->store(0, std::memory_order_relaxed);
        m_spin->store(0, std::memory_order_release);
    }

    /** Whether the calling thread is the owner: only that thread itself can write its id there. */
    static bool heldByCaller(const SpinOwner* owner) {
        return owner != nullptr && owner->load(std::memory_order_relaxed) == pthread_self();
    }

private:
    SpinVariable* m_spin;
    SpinOwner* m_owner;
    bool m_locked = false;
};

} // namespace vexo::templates::platform

#endif
