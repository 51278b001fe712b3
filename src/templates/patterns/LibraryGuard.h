/** The users of the library, and the singletons that exist while there are any. */
#ifndef TEMPLATES_PATTERNS_LIBRARYGUARD_H
#define TEMPLATES_PATTERNS_LIBRARYGUARD_H

#include "templates/platform/SpinLockVariableGuard.h"

#include <atomic>
#include <cstdint>
#include <memory>

/** The controller's view of a singleton. The order of the virtual operations must not change. */
class GuardedSingletonBase {
public:
    /** The variable that points to the completed singleton. */
    using InstanceSlot = std::atomic<GuardedSingletonBase*>;

    GuardedSingletonBase() = default;
    GuardedSingletonBase(const GuardedSingletonBase&) = delete;
    GuardedSingletonBase& operator=(const GuardedSingletonBase&) = delete;
    /** Called before the singleton is destroyed. */
    virtual void deinit();
    /** Stores the address of the singleton's instance variable in `out`. */
    virtual void instanceSlot(InstanceSlot** out) = 0;
    virtual ~GuardedSingletonBase();
};

/**
 * Counts the users of the library. When the last one leaves, the singletons are destroyed, newest first; the
 * next user starts afresh.
 */
class LibraryInitController {
public:
    /** Adds a user. */
    static void init();
    /** Removes a user. There must be one. */
    static void deinit();
    /** Destroys the singleton with the last user; without a user it is not registered and never destroyed. */
    static void registerLibraryObject(GuardedSingletonBase* singleton);

    /** When set, each step prints a line on the standard output. For use from a debugger. */
    static std::atomic<bool> mVerbose;

private:
    struct Data;

    static void destroy(GuardedSingletonBase* singleton);
    static void print(const char* step);
    static void print(const char* step, std::uint32_t useCount);

    static vexo::templates::platform::SpinVariable mLock;
    static vexo::templates::platform::SpinOwner mOwner;
    static Data* mInstance;
    static std::uint32_t mUseCount;
};

/** A singleton that exists from its first use until the library's last user leaves. */
template <typename T> class GuardedSingleton : public GuardedSingletonBase {
public:
    /** The singleton, created on first use. From within its creation: the object being created. */
    static T* instance() {
        using vexo::templates::platform::SpinLockVariableGuard;
        if (T* finished = finishedObject()) return finished;
        if (SpinLockVariableGuard::heldByCaller(&s_owner) && current() != nullptr) return current();
        const SpinLockVariableGuard guard(&s_lock, &s_owner);
        if (T* finished = finishedObject()) return finished;
        std::unique_ptr<T> created(new T); // enters itself in s_creating
        LibraryInitController::registerLibraryObject(created.get());
        T* singleton = created.release();
        singleton->init();
        s_instance.store(singleton, std::memory_order_release);
        return singleton;
    }

    void instanceSlot(InstanceSlot** out) override { *out = &s_instance; }
    ~GuardedSingleton() override { s_creating.store(nullptr, std::memory_order_release); }
    /** Called once, after registration and before other threads see the object. */
    virtual void init() {}

protected:
    GuardedSingleton() { s_creating.store(this, std::memory_order_release); }
    /** The object from the start of its creation to its destruction, else null. Creates nothing. */
    static T* current() { return static_cast<T*>(s_creating.load(std::memory_order_acquire)); }

private:
    static T* finishedObject() { return static_cast<T*>(s_instance.load(std::memory_order_acquire)); }

    static inline constinit vexo::templates::platform::SpinVariable s_lock{0};
    static inline constinit vexo::templates::platform::SpinOwner s_owner{0};
    static inline constinit InstanceSlot s_instance{nullptr};
    static inline constinit InstanceSlot s_creating{nullptr};
};

#endif
