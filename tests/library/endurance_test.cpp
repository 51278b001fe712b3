// Leaks over thousands of rounds, and resources that several copies of the library share.
//
// The library is loaded and unloaded here, so each test has a host of its own.

#include "support/applet_fixture.h"
#include "support/sanitizers.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
extern "C" std::size_t __sanitizer_get_current_allocated_bytes(); // gcc has no header for it
#endif

namespace {

using namespace support;
using applet_host::AppletHost;
using applet_host::Locations;
using applet_host::Session;
namespace fs = std::filesystem;

constexpr const char* appletName = "libGrab_TwinLaneLineColor.so";
constexpr const char* dispatcherName = "libcommon-logging-dispatcher.so";
constexpr const char* boardNames[] = {"libvexo_hw.so", "libtslrt.so", "libgrabcore5.so"};
const bool underValgrind = [] {
    const char* preloaded = std::getenv("LD_PRELOAD");
    return preloaded != nullptr && std::strstr(preloaded, "vgpreload") != nullptr;
}();
constexpr bool sanitized = underAddressSanitizer || underThreadSanitizer;

/** System resources of a process. */
struct Holdings {
    std::ptrdiff_t descriptors, mappings;
    bool operator==(const Holdings&) const = default;
    friend void PrintTo(const Holdings& it, std::ostream* out) {
        *out << it.descriptors << " descriptors, " << it.mappings << " mappings";
    }
};

Holdings holdings() {
    std::ifstream maps("/proc/self/maps");
    const auto mappings = std::count(std::istreambuf_iterator<char>(maps), {}, '\n');
    return {std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()),
            sanitized || underValgrind ? 0 : mappings}; // they map memory of their own
}

/** Bytes that the process has allocated and not freed, and those that the allocator keeps for the thread. */
std::size_t allocatedBytes() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return __sanitizer_get_current_allocated_bytes();
#else
    const struct mallinfo2 all = mallinfo2();
    return all.uordblks + all.hblkhd;
#endif
}

/** Checks that rounds leak nothing: descriptors, mappings and allocated bytes stay as after the first ones. */
template <typename Round> void expectSteady(int rounds, Round round) {
    if (sanitized || underValgrind) rounds /= 50;
    constexpr int settling = 40; // a multiple of the length of the rounds' cycles
    for (int i = 0; i < settling; ++i)
        round(i);
    const Holdings before = holdings();
    // A block lost in each round is at least 16 bytes of each. The address sanitizer itself keeps 32 bytes for each
    // destructor that an unloaded library had registered; it reports lost blocks at the end of the program.
    const std::ptrdiff_t most = std::ptrdiff_t{underAddressSanitizer ? 512 : 12} * rounds;
    std::ptrdiff_t grown = most;
    // Blocks that the allocator keeps for the thread may fill up in the first rounds; a lost block shows in all.
    for (int attempt = 0; attempt < 2 && grown >= most; ++attempt) {
        const std::size_t allocatedBefore = allocatedBytes();
        for (int i = 0; i < rounds; ++i)
            round(i);
        grown = static_cast<std::ptrdiff_t>(allocatedBytes() - allocatedBefore);
    }
    testing::Test::RecordProperty("grown", std::to_string(grown));
    EXPECT_EQ(holdings(), before);
    EXPECT_LT(grown, most) << "bytes in " << rounds << " rounds";
}

/** Uses an object once: a refusal, so that the logging is bound too, and a value. */
void use(Session& session) {
    ASSERT_EQ(session.error, FG_OK);
    const std::uint32_t value = 512;
    const auto set = session.host.applet().Fg_setParameterWithType;
    EXPECT_EQ(set(session.fg(), FG_CAMSTATUS, &value, 0, FG_PARAM_UINT32), FG_ERR_NOT_AVAILABLE);
    EXPECT_EQ(set(session.fg(), FG_WIDTH, &value, 0, FG_PARAM_UINT32), FG_OK);
}

void* openGlobally(const fs::path& library) {
    void* handle = dlopen(library.c_str(), RTLD_NOW | RTLD_GLOBAL);
    EXPECT_NE(handle, nullptr) << dlerror();
    return handle;
}

TEST(Endurance, OpensAndFrees) {
    const AppletHost host;
    expectSteady(10000, [&](int round) {
        {
            Session session(host, round % 2);
            use(session);
            EXPECT_TRUE(isLoaded(dispatcherName));
        }
        // The last user destroys the singletons.
        EXPECT_FALSE(isLoaded(dispatcherName));
    });
    for (const char* what : {"boards", "designs", "handles", "strings"})
        EXPECT_EQ(host.board().live(what), 0) << what;
}

TEST(Endurance, LutLoads) {
    const TemporaryFolder folder;
    const AppletHost host;
    Session session(host, 0);
    host.board().log_kinds(session.device, 0); // or its log would grow
    const auto setText = [&](int id, const std::string& text) {
        EXPECT_EQ(host.applet().Fg_setParameterWithType(session.fg(), id, text.c_str(), 0, FG_PARAM_TEXT),
                  FG_OK);
    };
    const std::string full = folder / "full.lut", part = folder / "part.lut";
    setText(FG_LUT_SAVE_FILE, full);
    writeFile(part,
              "# Lut data file v1.1\n\n[red]\nnrOfElements=2;\n0,1;\n1,2;\n[green]\n0,3;\n[blue]\n0,4;\n");
    const std::uint32_t fromFile = LUT_TYPE_CUSTOM;
    setText(FG_LUT_CUSTOM_FILE, full);
    EXPECT_EQ(host.applet().Fg_setParameterWithType(session.fg(), FG_LUT_TYPE, &fromFile, 0, FG_PARAM_UINT32),
              FG_OK);
    expectSteady(10000, [&](int round) { setText(FG_LUT_CUSTOM_FILE, round % 20 == 0 ? full : part); });
}

TEST(Endurance, LoadsAndUnloads) {
    const Locations where = Locations::beside();
    const auto round = [&](int number) {
        {
            const AppletHost host(where);
            Session session(host, number % 2);
            use(session);
        }
        EXPECT_FALSE(isLoaded(appletName));
        EXPECT_FALSE(isLoaded(dispatcherName));
    };
    expectSteady(1000, [&](int number) {
        round(number);
        for (const char* library : boardNames)
            EXPECT_FALSE(isLoaded(library)) << library;
    });
    std::vector<void*> kept;
    for (const char* library : boardNames)
        kept.push_back(openGlobally(where.virtualBoard / library));
    expectSteady(1000, round);
    for (void* library : kept)
        dlclose(library);
}

/** A copy of the library in an SDK folder of its own. */
class Copy {
public:
    Copy(const std::string& folder) : m_where(Locations::beside()) {
        fs::create_directories(folder + "/lib");
        fs::create_directories(folder + "/lib64");
        m_dispatcher = folder + "/lib64/" + dispatcherName;
        fs::copy_file(m_where.applet.parent_path().parent_path() / "lib64" / dispatcherName, m_dispatcher);
        fs::copy_file(m_where.applet, folder + "/lib/" + appletName);
        m_where.applet = folder + "/lib/" + appletName;
    }
    void load() {
        m_host.emplace(m_where);
        m_global = openGlobally(m_where.applet);
        m_session.emplace(*m_host, 0);
        use(*m_session);
    }
    void unload() {
        m_session.reset();
        m_host.reset();
        dlclose(m_global);
    }
    bool isLoaded() const { return support::isLoaded(m_where.applet.c_str()); }
    bool isLogging() const { return support::isLoaded(m_dispatcher.c_str()); }
    Session& session() { return *m_session; }
    const applet_host::AppletFunctions& applet() const { return m_host->applet(); }
    void* lastDevice() const {
        void* device = nullptr;
        EXPECT_EQ(applet().Info(FG_INFO_DEVICE, 0, 0, &device, nullptr), 0);
        return device;
    }
    /** The object that a handle of this or of the other copy resolves to. */
    int answer(Session& session) const {
        std::uint32_t width = 0;
        return applet().Fg_getParameterWithType(session.fg(), FG_WIDTH, &width, 0, FG_PARAM_UINT32);
    }

private:
    Locations m_where;
    std::string m_dispatcher;
    void* m_global = nullptr;
    std::optional<AppletHost> m_host;
    std::optional<Session> m_session;
};

TEST(Copies, AreIndependent) {
    const TemporaryFolder folder;
    Copy first(folder / "first"), second(folder / "second");
    AppletLog log(4);
    first.load();
    EXPECT_EQ(log.take().size(), 1u);
    second.load();
    EXPECT_EQ(log.take().size(), 1u);
    EXPECT_TRUE(first.isLogging() && second.isLogging());
    EXPECT_NE(first.applet().Std_entry, second.applet().Std_entry);
    EXPECT_EQ(first.lastDevice(), first.session().device);
    EXPECT_EQ(second.lastDevice(), second.session().device);
    EXPECT_EQ(first.answer(first.session()), FG_OK);
    EXPECT_EQ(second.answer(second.session()), FG_OK);
    EXPECT_EQ(first.answer(second.session()), FG_ERR_INVALID_HANDLE);
    EXPECT_EQ(second.answer(first.session()), FG_ERR_INVALID_HANDLE);

    first.unload();
    EXPECT_FALSE(first.isLoaded() || first.isLogging());
    EXPECT_TRUE(second.isLoaded() && second.isLogging());
    use(second.session());
    EXPECT_EQ(log.take().size(), 1u);
    EXPECT_EQ(second.answer(second.session()), FG_OK);
    EXPECT_EQ(second.lastDevice(), second.session().device);
    second.unload();
    EXPECT_FALSE(second.isLoaded() || second.isLogging());
}

/** Leaves a handle behind and ends the process as `end` says. */
[[noreturn]] void leaveAHandleBehind(bool unload) {
#if defined(__SANITIZE_ADDRESS__)
    __lsan_disable(); // the test leaks the handle intentionally
#endif
    auto* host = new AppletHost;
    use(*new Session(*host, 0));
    if (unload) delete host;
    std::exit(0);
}

TEST(EnduranceDeathTest, LeakedHandleDoesNotDisturbTheExit) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    for (const bool unload : {false, true})
        EXPECT_EXIT(leaveAHandleBehind(unload), testing::ExitedWithCode(0), "");
}

} // namespace
