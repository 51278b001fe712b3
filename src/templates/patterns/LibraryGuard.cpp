#include "templates/patterns/LibraryGuard.h"

#include "templates/platform/assertion.h"

#include <cstdio>
#include <list>

using vexo::templates::platform::assertThat;
using vexo::templates::platform::SpinLockVariableGuard;
using vexo::templates::platform::SpinOwner;
using vexo::templates::platform::SpinVariable;

void GuardedSingletonBase::deinit() {}

GuardedSingletonBase::~GuardedSingletonBase() = default;

struct LibraryInitController::Data {
    std::list<GuardedSingletonBase*> mSingletons; // newest first
    std::list<void (*)()> mExitFunctions;
};

constinit SpinVariable LibraryInitController::mLock{0};
constinit SpinOwner LibraryInitController::mOwner{0};
constinit LibraryInitController::Data* LibraryInitController::mInstance = nullptr;
constinit std::uint32_t LibraryInitController::mUseCount = 0;
constinit std::atomic<bool> LibraryInitController::mVerbose{false};

void LibraryInitController::init() {
    const SpinLockVariableGuard guard(&mLock, &mOwner);
    if (mUseCount == 0) {
        mInstance = new Data; // may throw: counted only after it
        print("[Create ]");
    }
    ++mUseCount;
    print("[Init   ]", mUseCount);
}

void LibraryInitController::deinit() {
    const SpinLockVariableGuard guard(&mLock, &mOwner);
    assertThat(mUseCount != 0, "mUseCount != 0",
               {"templates/patterns/LibraryGuard", 154, "static void LibraryInitController::deinit()"});
    print("[Deinit ]", mUseCount - 1);
    if (--mUseCount != 0) return;
    for (void (*function)() : mInstance->mExitFunctions)
        function();
    // Not a range-based loop: the destruction of one singleton may create another.
    while (!mInstance->mSingletons.empty()) {
        GuardedSingletonBase* newest = mInstance->mSingletons.front();
        mInstance->mSingletons.pop_front();
        destroy(newest);
    }
    print("[Destroy]");
    delete mInstance;
    mInstance = nullptr;
}

void LibraryInitController::registerLibraryObject(GuardedSingletonBase* singleton) {
    assertThat(singleton != nullptr, "singleton != 0",
               {"templates/patterns/LibraryGuard", 103,
                "static void LibraryInitController::registerLibraryObject(GuardedSingletonBase*)"});
    const SpinLockVariableGuard guard(&mLock, &mOwner);
    if (mInstance != nullptr) mInstance->mSingletons.push_front(singleton);
}

void LibraryInitController::destroy(GuardedSingletonBase* singleton) {
    singleton->deinit();
    GuardedSingletonBase::InstanceSlot* slot = nullptr;
    singleton->instanceSlot(&slot);
    delete singleton;
    slot->store(nullptr, std::memory_order_release);
}

void LibraryInitController::print(const char* step) {
    if (!mVerbose) return;
    std::printf("LibraryInitController %s - Instance: %p\n", step, static_cast<void*>(mInstance));
}

void LibraryInitController::print(const char* step, std::uint32_t useCount) {
    if (!mVerbose) return;
    std::printf("LibraryInitController %s - Instance: %p - Use Count: %u\n", step,
                static_cast<void*>(mInstance), useCount);
}
