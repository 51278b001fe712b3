#include "support/sanitizers.h"
#include "support/stress.h"
#include "templates/platform/CriticalSection.h"
#include "templates/platform/ReadWriteLock.h"
#include "templates/platform/RecursiveMutex.h"
#include "templates/platform/SpinLockVariableGuard.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <functional>
#include <future>
#include <memory>
#include <new>
#include <stdexcept>
#include <sys/mman.h>
#include <thread>
#include <unistd.h>

using namespace vexo::templates::platform;
using vexo::templates::patterns::GenericLock;
using vexo::templates::patterns::GenericLockGuard;

namespace {

template <typename Body> auto inOtherThread(Body body) { return std::async(std::launch::async, body).get(); }

/** Whether another thread could take the lock now. */
bool isFree(CriticalSection& lock) NO_THREAD_SAFETY_ANALYSIS {
    return inOtherThread([&lock]() NO_THREAD_SAFETY_ANALYSIS {
        const bool taken = lock.tryLock(60000);
        if (taken) lock.unlock();
        return taken;
    });
}

TEST(LocksDeathTest, MisuseAbortsWithTheTextOfTheAssertion) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto enter = []() NO_THREAD_SAFETY_ANALYSIS { CriticalSection().enter(); };
    const auto leave = []() NO_THREAD_SAFETY_ANALYSIS { CriticalSection().leave(); };
    const auto lock = []() NO_THREAD_SAFETY_ANALYSIS { RecursiveMutex().lock(); };
    const auto unlock = []() NO_THREAD_SAFETY_ANALYSIS { RecursiveMutex().unlock(); };
    EXPECT_DEATH(enter(),
                 "templates/patterns/GenericLock:48: virtual vexo::templates::patterns::GenericLock::"
                 "~GenericLock\\(\\): Assertion `m_count == 0' failed");
    EXPECT_DEATH(leave(), "templates/patterns/GenericLock:70: void vexo::templates::patterns::GenericLock::"
                          "leave\\(\\): Assertion `m_count > 0' failed");
    EXPECT_DEATH(lock(), "templates/platform/RecursiveMutex:59: virtual vexo::templates::platform::"
                         "RecursiveMutex::~RecursiveMutex\\(\\): Assertion `m_count == 0' failed");
    EXPECT_DEATH(unlock(), "templates/platform/RecursiveMutex:92: void vexo::templates::platform::"
                           "RecursiveMutex::unlock\\(\\): Assertion `m_count > 0' failed");
}

TEST(Locks, ExcludeEachOtherUnderContention) {
    CriticalSection section;
    RecursiveMutex mutex;
    ReadWriteLock readWrite;
    SpinVariable spin{0};
    SpinOwner owner{0};
    long counter = 0; // not atomic: without exclusion counts are lost
    const std::function<void()> ways[] = {[&] {
                                              const CriticalSectionGuard guard(&section);
                                              ++counter;
                                          },
                                          [&] {
                                              const GenericLockGuard guard(&section, false, true);
                                              ++counter;
                                          },
                                          [&]() NO_THREAD_SAFETY_ANALYSIS {
                                              const RecursiveMutexGuard outer(&mutex);
                                              { const RecursiveMutexGuard inner(&mutex), innermost(&mutex); }
                                              ++counter;
                                          },
                                          [&] {
                                              const ReadWriteLockGuard guard(&readWrite,
                                                                             ReadWriteLockGuard::write);
                                              ++counter;
                                          },
                                          [&] {
                                              const SpinLockVariableGuard outer(&spin, &owner);
                                              { const SpinLockVariableGuard inner(&spin, &owner); }
                                              ++counter;
                                          }};
    for (const auto& way : ways) {
        counter = 0;
        support::stress(4, 20000, [&](int, int) { way(); });
        EXPECT_EQ(counter, 80000) << "way " << &way - ways;
    }
    EXPECT_FALSE(section.isLocked());
    EXPECT_EQ(mutex.holders(), 0u);
    EXPECT_EQ(spin.load() + owner.load(), 0u);
}

TEST(CriticalSection, IsHeldForTheScopeHoweverItEnds) {
    CriticalSection lock;
    try {
        const CriticalSectionGuard guard(&lock);
        EXPECT_TRUE(lock.isLocked());
        EXPECT_FALSE(isFree(lock)); // immediately, whatever the timeout
        throw std::runtime_error("refused");
    } catch (const std::runtime_error&) {
    }
    EXPECT_FALSE(lock.isLocked());
    EXPECT_TRUE(isFree(lock));
    [&lock]() NO_THREAD_SAFETY_ANALYSIS {
        const CriticalSectionGuard guard(&lock);
        lock.leave(); // explicitly: the guard must not leave again
    }();
    EXPECT_TRUE(isFree(lock));
}

TEST(CriticalSection, NestedEnterCountsWithoutBlocking) {
    if (underThreadSanitizer) GTEST_SKIP() << "the second release is an error to the sanitizer";
    CriticalSection lock;
    [&lock]() NO_THREAD_SAFETY_ANALYSIS {
        const CriticalSectionGuard outer(&lock);
        {
            const CriticalSectionGuard inner(&lock);
            EXPECT_FALSE(isFree(lock));
        }
        EXPECT_TRUE(lock.isLocked());
        EXPECT_TRUE(isFree(lock));
    }();
    EXPECT_FALSE(lock.isLocked());
    EXPECT_TRUE(isFree(lock));

    // The outer leave is not under the mutex: the count stays right if another thread counts at that moment.
    support::stress(2, 1000000, [&](int, int) NO_THREAD_SAFETY_ANALYSIS {
        lock.enter();
        lock.enter();
        lock.leave();
        lock.leave();
    });
    EXPECT_FALSE(lock.isLocked());
}

TEST(GenericLockGuard, TakesReleasesAndDeletesByItsFlags) {
    struct WatchedLock final : GenericLock {
        explicit WatchedLock(std::string* log) : events(log) {}
        ~WatchedLock() override { *events += "deleted "; }
        void lock() override NO_THREAD_SAFETY_ANALYSIS { *events += "lock "; }
        bool tryLock(std::uint32_t) override NO_THREAD_SAFETY_ANALYSIS { return false; }
        void unlock() override NO_THREAD_SAFETY_ANALYSIS { *events += "unlock "; }
        std::string* events;
    };
    std::string events;
    { const GenericLockGuard owning(new WatchedLock(&events), true, true); }
    EXPECT_EQ(events, "lock unlock deleted ");

    events.clear();
    auto lock = std::make_unique<WatchedLock>(&events);
    [&]() NO_THREAD_SAFETY_ANALYSIS {
        { const GenericLockGuard idle(lock.get(), false, false); }
        lock->enter();
        { const GenericLockGuard idle(lock.get(), false, false); }
        EXPECT_TRUE(lock->isLocked());
        lock->leave();
        const GenericLockGuard left(lock.get(), false, true);
        lock->leave(); // explicitly: the guard must not leave again
    }();
    EXPECT_EQ(events, "lock unlock lock unlock ");
}

TEST(ReadWriteLock, ReadersShareAndAWriterWaits) {
    ReadWriteLock lock;
    std::future<void> writer;
    {
        const ReadWriteLockGuard reader(&lock, ReadWriteLockGuard::read);
        inOtherThread([&lock] { const ReadWriteLockGuard second(&lock, ReadWriteLockGuard::read); });
        writer = std::async(std::launch::async,
                            [&lock] { const ReadWriteLockGuard guard(&lock, ReadWriteLockGuard::write); });
        EXPECT_EQ(writer.wait_for(std::chrono::milliseconds(30)), std::future_status::timeout);
    }
    writer.get();
    [&lock]() NO_THREAD_SAFETY_ANALYSIS {
        lock.lockRead();
        const ReadWriteLockGuard guard(&lock, 0); // without a mode it only releases
    }();
    inOtherThread([&lock] { const ReadWriteLockGuard guard(&lock, ReadWriteLockGuard::write); });
}

// A read-only page stops the owner while the guard is destroyed: the fault shows whether the lock is held then.
SpinVariable watchedSpin{0};
void* ownersPage = nullptr;
std::atomic<std::uint32_t> heldWhileCleared{0};

TEST(SpinLockVariableGuard, ClearsItsOwnerWhileItHoldsTheLock) {
    const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    ownersPage = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(ownersPage, MAP_FAILED);
    auto* owner = new (ownersPage) SpinOwner{0};
    struct sigaction onFault {
    }, before{};
    onFault.sa_handler = [](int) {
        heldWhileCleared = watchedSpin.load();
        mprotect(ownersPage, sizeof(SpinOwner), PROT_READ | PROT_WRITE);
    };
    sigaction(SIGSEGV, &onFault, &before);
    {
        const SpinLockVariableGuard guard(&watchedSpin, owner);
        mprotect(ownersPage, size, PROT_READ);
    }
    sigaction(SIGSEGV, &before, nullptr);
    EXPECT_EQ(heldWhileCleared, 1u);
    EXPECT_EQ(owner->load(), pthread_t{});
    munmap(ownersPage, size);
}

} // namespace
