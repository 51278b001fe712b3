#include "templates/patterns/LibraryGuard.h"

#include "support/stress.h"

#include <gtest/gtest.h>

#include <atomic>
#include <regex>
#include <string>

namespace {

std::string events;

/** A singleton that records its construction and destruction; `Name` makes each a distinct type. */
template <char Name> class Probe : public GuardedSingleton<Probe<Name>> {
public:
    Probe() {
        seenByConstructor = Probe::instance();
        events += std::string("+") + Name;
    }
    ~Probe() override { events += std::string("-") + Name; }
    void init() override {
        seenByInit = Probe::instance();
        ready = true;
    }
    void deinit() override {
        events += std::string("~") + Name;
        if (Name == 'L') Probe<'M'>::instance();
    }
    static bool exists() { return Probe::current() != nullptr; }

    Probe* seenByConstructor = nullptr;
    Probe* seenByInit = nullptr;
    bool ready = false;
};

TEST(Lifetime, SingletonsAreDestroyedWithTheLastUserNewestFirst) {
    events.clear();
    LibraryInitController::init();
    Probe<'A'>::instance();
    LibraryInitController::init();
    EXPECT_EQ(Probe<'B'>::instance(), Probe<'B'>::instance());
    LibraryInitController::deinit();
    EXPECT_EQ(events, "+A+B");
    LibraryInitController::deinit();
    EXPECT_EQ(events, "+A+B~B-B~A-A");
    EXPECT_FALSE(Probe<'A'>::exists());

    LibraryInitController::init();
    const Probe<'A'>* again = Probe<'A'>::instance();
    EXPECT_EQ(again->seenByConstructor, again);
    EXPECT_EQ(again->seenByInit, again);
    LibraryInitController::deinit();
    EXPECT_EQ(events, "+A+B~B-B~A-A+A~A-A");
}

TEST(Lifetime, AnotherSingletonMayBeCreatedDuringTheDestruction) {
    events.clear();
    LibraryInitController::init();
    Probe<'L'>::instance();
    LibraryInitController::deinit();
    EXPECT_EQ(events, "+L~L+M-L~M-M");
    EXPECT_FALSE(Probe<'M'>::exists());
}

TEST(Lifetime, SingletonWithoutAUserIsKept) {
    events.clear();
    const Probe<'U'>* unregistered = Probe<'U'>::instance();
    LibraryInitController::init();
    LibraryInitController::deinit();
    EXPECT_EQ(events, "+U");
    EXPECT_EQ(Probe<'U'>::instance(), unregistered);
}

TEST(Lifetime, ThreadsSeeOneFinishedObject) {
    for (int round = 0; round < 50; ++round) {
        events.clear();
        LibraryInitController::init();
        std::atomic<int> finished{0};
        support::stress(4, 1, [&](int, int) {
            LibraryInitController::init();
            if (Probe<'T'>::instance()->ready) ++finished;
            LibraryInitController::deinit();
        });
        EXPECT_EQ(finished, 4);
        EXPECT_EQ(events, "+T");
        LibraryInitController::deinit();
        EXPECT_EQ(events, "+T~T-T");
    }
}

TEST(Lifetime, VerboseStepsArePrinted) {
    LibraryInitController::mVerbose = true;
    testing::internal::CaptureStdout();
    LibraryInitController::init();
    LibraryInitController::deinit();
    LibraryInitController::mVerbose = false;
    const std::regex address("0x[0-9a-f]+");
    EXPECT_EQ(std::regex_replace(testing::internal::GetCapturedStdout(), address, "P"),
              "LibraryInitController [Create ] - Instance: P\n"
              "LibraryInitController [Init   ] - Instance: P - Use Count: 1\n"
              "LibraryInitController [Deinit ] - Instance: P - Use Count: 0\n"
              "LibraryInitController [Destroy] - Instance: P\n");
}

TEST(LifetimeDeathTest, MisuseAbortsWithTheTextOfTheAssertion) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(LibraryInitController::deinit(),
                 "templates/patterns/LibraryGuard:154: static void LibraryInitController::deinit\\(\\): "
                 "Assertion `mUseCount != 0' failed");
    EXPECT_DEATH(LibraryInitController::registerLibraryObject(nullptr),
                 "templates/patterns/LibraryGuard:103: static void "
                 "LibraryInitController::registerLibraryObject\\(GuardedSingletonBase\\*\\): "
                 "Assertion `singleton != 0' failed");
}

} // namespace
