// From Std_entry to Fg_FreeGrabber: missing functions, refusals, leaks.

#include "support/every_call.h"
#include "support/sanitizers.h"
#include "support/temporary_folder.h"

#include <dlfcn.h>
#include <filesystem>
#include <set>

namespace {

using namespace support;

/** Std_entry with a refused design: the object is not freed. */
int codeOfARefusal(const applet_host::AppletFunctions& applet, LOOMdevice* device) {
    const ExpectedLeak object;
    int error = 1;
    EXPECT_EQ(applet.Std_entry(device, &error, 0), nullptr);
    return error;
}

/** An instance without a board, for the duration of `use`. */
template <typename Use> void withOffline(decltype(&Info) info, Use use) {
    void* instance = nullptr;
    ASSERT_EQ(info(4864, 0, 0, nullptr, &instance), 0);
    use(instance);
    EXPECT_EQ(info(4896, 0, 0, instance, nullptr), 0);
}

class BringUp : public AppletTest {
protected:
    /** A failing bring-up: the code, its line in the log, and no leaks. */
    void expectFailure(int code, const std::string& line) {
        AppletLog log(4);
        const int designs = live("designs");
        Grabber grabber;
        EXPECT_EQ(grabber.bringUp().error, code);
        EXPECT_EQ(grabber.handle.object, nullptr);
        EXPECT_EQ(log.take(), Lines{line});
        EXPECT_EQ(applet.Std_entry(grabber.device, nullptr, 0), nullptr);
        EXPECT_EQ(live("designs"), designs);
    }
};

TEST_F(BringUp, MissingOrFailingInit) {
    const auto calling = [](const std::string& function) {
        return AppletLog::line(5,
                               "error calling '" + function + "' (tslName = 'Grab_TwinLaneLineColor.tsl')");
    };
    const std::string unresolved =
        AppletLog::line(6, "cannot resolve function 'Fg_InitHandle' and/or 'Fg_InitHandleSlaveAware'");
    board.fail_init(true, -2005);
    expectFailure(-2005, calling("Fg_InitHandleSlaveAware"));
    board.hide_entry("Fg_InitHandleSlaveAware", true);
    expectFailure(-2005, calling("Fg_InitHandle"));
    board.hide_entry("Fg_getLastErrorNumber", true);
    expectFailure(FG_ERR_INIT, calling("Fg_InitHandle"));
    board.hide_entry("Fg_InitHandle", true);
    expectFailure(FG_ERR_UNRESOLVED, unresolved);
}

TEST_F(BringUp, InitFailureWithoutACodeContinuesWithoutInnerHandle) {
    Grabber before;
    before.handle.object = applet.Std_entry(before.device, nullptr, 0); // without a pointer for the code
    ASSERT_EQ(before.value<std::uint32_t>(FG_WIDTH), 1024u);
    EXPECT_EQ(lastDevice(), before.device);
    fpga_design* const design = lastDesign();

    board.fail_init(true, 0);
    Grabber grabber(0);
    ASSERT_EQ(grabber.error, 0);
    ASSERT_NE(grabber.handle.object, nullptr);
    for (const Forwarder& forwarder : forwarders()) {
        EXPECT_EQ(forwarder.call(grabber.fg()), FG_ERR_NOT_AVAILABLE) << forwarder.name;
        EXPECT_EQ(grabber.lastError(), FG_ERR_NOT_AVAILABLE) << forwarder.name;
    }
    EXPECT_EQ(applet.Fg_getParameterInfo(grabber.fg(), 0), nullptr);
    EXPECT_EQ(grabber.free(), FG_ERR_INVALID_HANDLE) << "the runtime's own answer for no inner handle";
    EXPECT_EQ(grabber.handle.object, nullptr);
    before.free();
    EXPECT_EQ(lastDevice(), before.device) << "the process-wide words are those of the last success";
    EXPECT_EQ(lastDesign(), design);
}

TEST_F(BringUp, InnerHandleIsFreedBeforeTheObject) {
    Grabber grabber(1);
    board.log_kinds(grabber.device, VBOARD_CALL);
    grabber.clearLog();
    int answer = FG_ERR_INVALID_HANDLE;
    std::pair end{&grabber, &answer};
    board.on_access(
        grabber.device,
        [](void* context) {
            const auto& [ended, result] = *static_cast<decltype(end)*>(context);
            std::uint32_t timeout = 0;
            *result = ended->get(FG_TIMEOUT, &timeout); // served from the object
        },
        &end);
    EXPECT_EQ(grabber.free(), FG_OK);
    EXPECT_EQ(grabber.log(), Lines{"call Fg_FreeGrabber"});
    EXPECT_EQ(answer, FG_OK) << "the object is gone before its inner handle";
}

TEST_F(BringUp, MissingDesignParametersAreNamedInOrderAndFailAtTheAccess) {
    Lines expected;
    for (const std::string& name : dataLines("design_parameters.txt")) {
        ASSERT_EQ(board.lack_parameter(name.c_str(), true), VBOARD_OK) << name;
        expected.push_back(AppletLog::line(4, "cannot retrieve LOOM id for LOOM parameter: '" + name + "'"));
    }
    ASSERT_EQ(expected.size(), 138u);
    AppletLog log(4);
    Grabber grabber(1);
    ASSERT_EQ(grabber.error, 0);
    EXPECT_EQ(log.take(), expected);

    EXPECT_EQ(grabber.set(FG_WIDTH, 512u), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(grabber.lastError(), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(log.take().at(0),
              AppletLog::line(5, "Setting LOOM parameter 'Device1_Process0_Buffer_0_SensorWidth' (ID: 0) "
                                 "failed: result = -2070"));
}

TEST_F(BringUp, EnvironmentSwitches) {
    const std::set<std::string> on = {"yes", "true", "on", "1", "TrUe"};
    for (const char* word : {"yes", "true", "on", "1", "TrUe", "no", "", "2", "y", "on ", "0"})
        for (const auto& [variable, prefix] :
             {std::pair{"VEXO_ENABLE_DRA", "DRA_"}, {"VEXO_ENABLE_DLOOMA", "DLOOMA_"}}) {
            setVariable(variable, word);
            Grabber grabber(1);
            unsetenv(variable);
            const char* name = applet.Fg_getParameterName(grabber.fg(), 164);
            EXPECT_EQ(name != nullptr && std::string(name).starts_with(prefix), on.contains(word)) << word;
        }
}

/** Tests that need a process without loaded libraries. */
class Loading : public testing::Test {
    void SetUp() override {
        if (isLoaded("libvexo_hw.so")) GTEST_SKIP() << "needs a process of its own";
    }
};

TEST_F(Loading, RefusedDesignKeepsTheObjectAndTheRuntimeLoaded) {
    {
        const applet_host::AppletHost libraries;
        const auto& board = libraries.board();
        LOOMdevice* const device = board.open();
        board.refuse_design(true);
        EXPECT_EQ(codeOfARefusal(libraries.applet(), device), FG_ERR_INIT);
        board.refuse_design(false);
        board.close(device);
    }
    EXPECT_TRUE(isLoaded("libgrabcore5.so"));
}

TEST_F(Loading, PresenceOfTheVariableSelectsTheExternalDesign) {
    const TemporaryFolder folder;
    std::filesystem::current_path(folder / "");
    Grabber grabber;
    for (const char* value : {"", "no"}) {
        setenv("__VEXO_FORCE_EXTERNAL_TSL", value, 1);
        EXPECT_EQ(codeOfARefusal(host().applet(), grabber.device), FG_ERR_INIT);
        withOffline(host().applet().Info, [](void*) { EXPECT_EQ(live("designs"), 0); });
    }
    writeFile("Grab_TwinLaneLineColor.tsl", "design");
    EXPECT_EQ(grabber.bringUp().error, 0);
}

TEST_F(Loading, NothingIsKnownBeforeTheFirstObject) {
    const auto overflow = [] { // sixth in the virtual board's list
        FgEventRecord record{};
        return host().applet().Info(5120, 1 << 5, 0, nullptr, &record);
    };
    EXPECT_EQ(lastDevice(), nullptr);
    EXPECT_EQ(lastDesign(), nullptr);
    EXPECT_EQ(overflow(), FG_ERR_INVALID_ARGUMENT);
    withOffline(host().applet().Info, [](void*) {});
    EXPECT_EQ(overflow(), 0) << "kept to the end of the process";
    EXPECT_EQ(lastDevice(), nullptr) << "no runtime was initialised";
    EXPECT_EQ(lastDesign(), nullptr);
}

TEST_F(Loading, MissingRuntimeLibrary) {
    const auto where = applet_host::Locations::beside();
    void* last = nullptr;
    for (const auto& file :
         {where.virtualBoard / "libvexo_hw.so", where.virtualBoard / "libtslrt.so", where.applet})
        last = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL); // stays loaded
    ASSERT_NE(last, nullptr);
    if (void* runtime = dlopen("libgrabcore5.so", RTLD_NOW)) {
        dlclose(runtime);
        GTEST_SKIP() << "a runtime is on the loader's path";
    }
    AppletLog log(4);
    int error = 1;
    const auto entry = reinterpret_cast<decltype(&Std_entry)>(dlsym(last, "Std_entry"));
    EXPECT_EQ(entry(nullptr, &error, 0), nullptr);
    EXPECT_EQ(error, FG_ERR_UNRESOLVED);
    EXPECT_EQ(log.take(), Lines{AppletLog::line(6, "error opening dll 'libgrabcore5.so'")});

    // No runtime is needed to read the parameters of an object without a board.
    const auto info = reinterpret_cast<decltype(&Info)>(dlsym(last, "Info"));
    withOffline(info, [&](void* offline) {
        RegisterInfo* root = nullptr;
        EXPECT_EQ(info(4880, 0, 0, offline, &root), 0);
        EXPECT_NE(root, nullptr);
    });
}

} // namespace
