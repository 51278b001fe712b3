// Binds the recording dispatcher from a small SDK directory in the build tree, TEST_SDK_DIR.

#include "support/Fg_Error.h"
#include "support/Logging.h"
#include "support/recording_dispatcher.h"
#include "support/sanitizers.h"
#include "support/sdk_directory.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <map>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

using vexo::tools::logging::Logger;
using vexo::tools::logging::Logging;
using Calls = std::vector<std::string>;

extern "C" __attribute__((visibility("default"))) const char* exportedByBoth();
const char* exportedByBoth() { return "program"; }

namespace {

constexpr const char* dispatcherPath = TEST_SDK_DIR "/lib64/libcommon-logging-dispatcher.so";

TEST(SdkDirectory, IsTheParentOfAKnownFolderAboveTheFile) {
    const std::map<std::string, std::string> cases = {
        {"/opt/sdk/lib64/libapplet.so", "/opt/sdk"},
        {"/opt/sdk/Hardware Applets/x/y.so", "/opt/sdk"},
        {"/opt//sdk///Dll//deep//er//y.so", "/opt//sdk"},
        {"/opt/bin/lib/y.so", "/opt/bin"}, // the nearest one
        {"/lib/y.so", "/"},
        {"sdk/bin/y.so", "sdk"},
        {"/opt/libs/lib6/y.so", ""},
        {"lib/y.so", ""},
        {"y.so", ""},
    };
    for (const auto& [file, expected] : cases)
        EXPECT_EQ(sdkDirectoryAbove(file), expected) << file;
}

TEST(SdkDirectory, IsCopiedFromTheEnvironmentWithinBounds) {
    const std::map<std::string, std::string> cases = {
        {"/opt/sdk///", "/opt/sdk"}, {"///", "/"}, {"", ""}, {"/123456789ab", "/12345678"}};
    for (const auto& [value, expected] : cases) {
        char buffer[] = "##########|";
        copyDirectory(buffer, 10, value.c_str());
        EXPECT_EQ(buffer, expected);
        EXPECT_EQ(buffer[10], '|');
    }
}

// Settings that are fixed once per process are tested in separate processes, with the given executable path.

void directoryFromTheEnvironment() {
    EXPECT_EQ(sdkDirectory(), nullptr);
    EXPECT_EQ(openSdkLibrary("common-logging-dispatcher", nullptr), nullptr);
    setenv("NORVANE_FG_SDK_DIR", TEST_SDK_DIR "//", 1);
    EXPECT_STREQ(sdkDirectory(), TEST_SDK_DIR);
    setenv("NORVANE_FG_SDK_DIR", "/elsewhere", 1);
    EXPECT_STREQ(sdkDirectory(), TEST_SDK_DIR);
    EXPECT_NE(openSdkLibrary("common-logging-dispatcher", nullptr), nullptr);
    EXPECT_EQ(openSdkLibrary("common-logging-dispatcher", "/elsewhere"), nullptr);
}

void directoryFromTheFile() { EXPECT_STREQ(sdkDirectory(), "/opt/sdk"); }

// The host changes its working directory after this library was loaded.

void directoryFromARelativeFile() {
    ASSERT_EQ(chdir("/"), 0);
    EXPECT_STREQ(sdkDirectory(), TEST_SDK_DIR);
}

void directoryFromARelativeVariable() {
    setenv("NORVANE_FG_SDK_DIR", "./", 1);
    ASSERT_EQ(chdir("/"), 0);
    EXPECT_NE(openSdkLibrary("common-logging-dispatcher", nullptr), nullptr);
    ASSERT_EQ(chdir("/tmp"), 0);
    EXPECT_NE(openSdkLibrary("common-logging-dispatcher", nullptr), nullptr);
}

void loggingIsOffWithoutDispatcher() {
    LibraryInitController::init();
    Logger* logger = Logging::instance()->getLogger("a");
    EXPECT_EQ(logger, Logging::instance()->getLogger("b"));
    EXPECT_FALSE(logger->isEnabled(6));
    logger->log(6, "without a sink", 0, 0);
    LibraryInitController::deinit();
}

void libraryThatIsNoDispatcher() {
    const support::TemporaryFolder sdk;
    std::filesystem::create_directory(sdk / "lib64");
    const std::string library = sdk / "lib64/libcommon-logging-dispatcher.so";
    std::filesystem::create_symlink(OTHER_LIBRARY, library);
    setenv("NORVANE_FG_SDK_DIR", (sdk / "").c_str(), 1);
    EXPECT_NE(openSdkLibrary("common-logging-dispatcher", nullptr), nullptr);
    loggingIsOffWithoutDispatcher();
    EXPECT_EQ(dlopen(library.c_str(), RTLD_NOW | RTLD_NOLOAD), nullptr) << "it stays open";
}

/** The dispatcher as seen by one load; the load uses the library's own code. */
struct Dispatcher {
    SharedLibrary library{dispatcherPath};
    Recording& recording = *static_cast<Recording*>(library.symbol(recordingSymbol));
};

void dispatcherShutsDown() {
    setenv("NORVANE_FG_SDK_DIR", TEST_SDK_DIR, 1);
    {
        const Dispatcher dispatcher;
        dispatcher.recording.loggers = {{"a", {7, 4}}};
        LibraryInitController::init();
        Logger* logger = Logging::instance()->getLogger("a");
        dispatcher.recording.shutdown();
        EXPECT_NE(Logging::instance()->getLogger("a"), logger);
        EXPECT_TRUE(logger->isEnabled(4));
        logger->log(4, "too late", 0, 0);
        LibraryInitController::deinit();
        EXPECT_EQ(dispatcher.recording.calls, Calls{"init"}); // and no fini
    }
    EXPECT_NE(dlopen(dispatcherPath, RTLD_NOW | RTLD_NOLOAD), nullptr); // stays open
}

void dispatcherShutsDownWhileOthersLog() {
    constexpr int threads = 4;
    constexpr std::size_t lines = 1000;
    setenv("NORVANE_FG_SDK_DIR", TEST_SDK_DIR, 1);
    const Dispatcher dispatcher;
    Recording& recording = dispatcher.recording;
    const auto lineCount = [&] {
        const std::lock_guard guard(recording.mutex);
        return recording.calls.size() - 1; // the first is the init
    };
    recording.loggers = {{"a", {7, 4}}};
    LibraryInitController::init();
    Logging::instance();

    std::atomic<bool> isOver{false};
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i)
        running.emplace_back([&] {
            while (!isOver) {
                Logger* logger = Logging::instance()->getLogger("a");
                if (logger->isEnabled(5)) logger->log(5, "a line", 0, 0);
            }
        });
    running.emplace_back([&] {
        for (std::uint32_t level = 4; !isOver; level = 10 - level)
            recording.level(7, level);
    });
    while (lineCount() < lines)
        std::this_thread::yield();
    recording.shutdown();
    isOver = true;
    for (std::thread& thread : running)
        thread.join();
    EXPECT_EQ(std::count(recording.calls.begin() + 1, recording.calls.end(), "7/5/a line/0/0"),
              static_cast<std::ptrdiff_t>(lineCount()));

    const std::size_t logged = lineCount();
    Logging::instance()->getLogger("a")->log(6, "too late", 0, 0);
    LibraryInitController::deinit();
    EXPECT_EQ(lineCount(), logged); // and no fini
}

const struct {
    const char* name;
    const char* file; /**< assumed path of the executable */
    void (*run)();
} scenarios[] = {
    {"environment", "/tmp/y.so", &directoryFromTheEnvironment},
    {"file", "/opt/sdk/lib64/libapplet.so", &directoryFromTheFile},
    {"relative file", "lib64/y.so", &directoryFromARelativeFile},
    {"relative environment", "/tmp/y.so", &directoryFromARelativeVariable},
    {"no file", TEST_SDK_DIR "/none/lib/y.so", &loggingIsOffWithoutDispatcher},
    {"no directory", "/tmp/y.so", &loggingIsOffWithoutDispatcher},
    {"no dispatcher", "/tmp/y.so", &libraryThatIsNoDispatcher},
    {"shutdown", "/tmp/y.so", &dispatcherShutsDown},
    {"busy shutdown", "/tmp/y.so", &dispatcherShutsDownWhileOthersLog},
};

/** Runs a scenario in a process that takes `file`, in the SDK folder, for its executable, without the
 *  environment variable. */
int runScenario(const char* file, const char* scenario) {
    const std::string program =
        std::filesystem::read_symlink("/proc/self/exe"); // under valgrind the link is its own
    const pid_t child = fork();
    if (child == 0) {
        unsetenv("NORVANE_FG_SDK_DIR");
        if (chdir(TEST_SDK_DIR) != 0) _exit(126);
        execl(program.c_str(), file, scenario, nullptr);
        _exit(127);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return status;
}

TEST(FreshProcess, DependsOnItsFolderAndEnvironment) {
    for (const auto& [name, file, run] : scenarios)
        EXPECT_EQ(runScenario(file, name), 0) << name;
}

TEST(SharedLibrary, ReportsLoadErrorsAndClosesOnDestruction) {
    SharedLibrary absent("/nowhere/absent.so");
    EXPECT_NE(absent.lastError().find("absent.so"), std::string::npos);
    EXPECT_EQ(absent.symbol(recordingSymbol), nullptr);
    static bool openInCallback = false;
    {
        SharedLibrary library(dispatcherPath);
        EXPECT_EQ(library.lastError(), "");
        EXPECT_NE(library.symbol(recordingSymbol), nullptr);
        EXPECT_EQ(library.symbol("no_such_symbol"), nullptr);
        library.setCloseCallback([](SharedLibrary* closing) { openInCallback = closing->isLoaded(); });
    }
    EXPECT_TRUE(openInCallback);
    EXPECT_EQ(dlopen(dispatcherPath, RTLD_NOW | RTLD_NOLOAD), nullptr);
}

class LoggingTest : public testing::Test {
protected:
    void SetUp() override {
        setenv("NORVANE_FG_SDK_DIR", TEST_SDK_DIR, 1);
        recording.loggers = {{"four", {4, 4}}, {"five", {5, 5}}, {"alias", {5, 3}}};
        LibraryInitController::init();
    }
    void TearDown() override { end(); }
    /** Ends the last use of the library. */
    void end() {
        if (std::exchange(m_inUse, false)) LibraryInitController::deinit();
    }

    Dispatcher dispatcher;
    Recording& recording = dispatcher.recording;

private:
    bool m_inUse = true;
};

TEST_F(LoggingTest, DispatcherReceivesLinesFromItsThreshold) {
    Logger* five = Logging::instance()->getLogger("five");
    EXPECT_FALSE(five->isEnabled(4));
    EXPECT_TRUE(five->isEnabled(5));
    five->log(6, "a line", 1, std::uint64_t{1} << 40);
    EXPECT_NE(Logging::instance()->getLogger("four"), five);
    EXPECT_EQ(Logging::instance()->getLogger("alias"), five);
    EXPECT_FALSE(five->isEnabled(4)); // the level that comes with a known handle is not taken
    end();
    EXPECT_EQ(recording.calls, (Calls{"init", "5/6/a line/1/1099511627776", "fini"}));

    LibraryInitController::init();
    Logging::instance();
    LibraryInitController::deinit();
    EXPECT_EQ(recording.calls.size(), 5u); // bound and ended again
}

TEST_F(LoggingTest, DispatcherChangesThresholds) {
    Logger* four = Logging::instance()->getLogger("four");
    Logger* five = Logging::instance()->getLogger("five");
    recording.level(4, 6);
    recording.level(99, 0); // not a handle
    EXPECT_FALSE(four->isEnabled(5));
    EXPECT_TRUE(four->isEnabled(6));
    EXPECT_FALSE(five->isEnabled(4));
}

TEST_F(LoggingTest, LoggerIsSilentForTheThreadThatMutedIt) {
    Logger* five = Logging::instance()->getLogger("five");
    EXPECT_TRUE(five->setEnabled(true));
    EXPECT_TRUE(five->setEnabled(false));
    EXPECT_FALSE(five->setEnabled(false));
    EXPECT_FALSE(five->isEnabled(6));
    std::thread([five] { EXPECT_TRUE(five->isEnabled(6)); }).join();
    EXPECT_FALSE(five->setEnabled(true));
    EXPECT_TRUE(five->isEnabled(6));
}

TEST_F(LoggingTest, DispatcherMayCallBackWhileItIsBound) {
    Logger* early = nullptr;
    recording.onInit = [&] {
        recording.level(5, 0);
        early = Logging::instance()->getLogger("five");
        Logging::instance()->dispatch(5, 6, "too early", 0, 0);
    };
    EXPECT_NE(Logging::instance()->getLogger("five"), early); // the early one is the closed one
    ASSERT_NE(early, nullptr);
    EXPECT_FALSE(early->isEnabled(6));
    EXPECT_EQ(recording.calls, Calls{"init"});
}

TEST_F(LoggingTest, DispatcherFindsItsOwnSymbolsFirst) {
    if (underAddressSanitizer || underThreadSanitizer) GTEST_SKIP() << "these sanitizers forbid it";
    Logging::instance();
    EXPECT_EQ(recording.ownSymbol, "dispatcher");
}

TEST(FgError, HoldsTheLastCodeOfTheFirstLevel) {
    Fg_Error error;
    EXPECT_EQ(error.getErrorNumberBuffer(), 0);
    EXPECT_EQ(error.setErr(-2070), -2070);
    EXPECT_EQ(error.setErrLevel2(5, "x"), -2130);
    EXPECT_EQ(error.getErrorNumberBuffer(), -2070);
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    for (const auto& [name, file, run] : scenarios)
        if (argc > 1 && std::string(argv[1]) == name) {
            run();
            return testing::UnitTest::GetInstance()->Failed() ? 1 : 0;
        }
    return RUN_ALL_TESTS();
}
