// A runtime without some of its functions: none, one, two or all. Each exported function must need only its own.
// Also invalid handles.
#include "support/every_call.h"
#include "support/sanitizers.h"
#include "support/temporary_folder.h"

#include <set>

namespace {

using namespace support;

using Missing = std::set<std::string>;

std::int64_t resultWithout(const Call& call, const Missing& missing) {
    for (const auto& [entry, result] : call.needs)
        if (missing.contains(entry)) return result;
    return call.usual;
}

/** Sets of missing functions: none, each, each pair, and all. */
std::vector<Missing> whatIsMissing() {
    const Lines entries = dataLines("runtime_entries.txt");
    std::vector<Missing> all = {{}, Missing(entries.begin(), entries.end())};
    for (const std::string& one : entries)
        for (const std::string& other : entries)
            if (one <= other) all.push_back({one, other});
    return all;
}

class EntryPoints : public AppletTest {
protected:
    /** Hides functions from the next bring-up. */
    void hide(const Missing& missing) {
        board.restore_design();
        for (const std::string& entry : missing)
            ASSERT_EQ(board.hide_entry(entry.c_str(), true), VBOARD_OK) << entry;
    }
    void expectResults(Grabber& grabber, const Missing& missing) {
        for (const Forwarder& forwarder : forwarders())
            board.answer(grabber.device, forwarder.name, answered);
        for (const Call& call : all) {
            SCOPED_TRACE(call.function);
            EXPECT_EQ(grabber.set(FG_WIDTH, 3u), errorBefore);
            const std::int64_t result = call.call(grabber.fg());
            EXPECT_EQ(result, resultWithout(call, missing));
            EXPECT_EQ(grabber.lastError(), call.errorAfter(result));
        }
        const bool hasLastError =
            !missing.contains("Fg_getStatusEx") && !missing.contains("Fg_getLastErrorNumber");
        EXPECT_EQ(errorOfRuntime(grabber), hasLastError ? -2010 : FG_ERR_NOT_AVAILABLE);
        const bool isFreed = !missing.contains("Fg_FreeGrabber");
        const int handles = live("handles");
        board.answer(grabber.device, "Fg_FreeGrabber", -77);
        EXPECT_EQ(grabber.free(), isFreed ? -77 : FG_OK);
        EXPECT_EQ(live("handles"), handles - isFreed);
    }
    /** After a failed Std_entry. */
    void expectNoObject(Grabber& grabber) {
        EXPECT_EQ(grabber.handle.object, nullptr);
        for (const Call& call : all)
            EXPECT_EQ(call.call(grabber.fg()), call.badHandle) << call.function;
        EXPECT_EQ(errorOfRuntime(grabber), FG_ERR_INVALID_HANDLE);
        EXPECT_EQ(grabber.free(), FG_ERR_INVALID_HANDLE);
    }
    /** The last error after a failure of the runtime. */
    int errorOfRuntime(Grabber& grabber) {
        board.answer(grabber.device, "Fg_getStatusEx", -9);
        board.last_error(grabber.device, -2010);
        applet.Fg_getStatusEx(grabber.fg(), 0, 0, 0, nullptr);
        return grabber.lastError();
    }

    const TemporaryFolder folder;
    const std::vector<Call> all = everyCall(folder / "saved.mcf");
};

TEST_F(EntryPoints, MissingFunctionsFailOnlyWhereTheyAreNeeded) {
    std::set<std::string> exported = {"Std_entry", "Fg_getLastErrorNumber", "Fg_FreeGrabber"};
    for (const Call& call : all)
        exported.insert(call.function);
    EXPECT_EQ(exported.size(), sizeof(applet_host::AppletFunctions) / sizeof(void*));

    for (const Missing& missing : whatIsMissing()) {
        std::string names = "without";
        for (const std::string& name : missing)
            names += ' ' + name;
        SCOPED_TRACE(names);
        hide(missing);
        Grabber grabber;
        std::optional<ExpectedLeak> innerHandle;
        if (missing.contains("Fg_FreeGrabber")) innerHandle.emplace();
        grabber.bringUp();
        innerHandle.reset();
        const bool starts =
            !missing.contains("Fg_InitHandle") || !missing.contains("Fg_InitHandleSlaveAware");
        EXPECT_EQ(grabber.error, starts ? FG_OK : FG_ERR_UNRESOLVED);
        if (starts)
            expectResults(grabber, missing);
        else
            expectNoObject(grabber);
    }
}

TEST_F(EntryPoints, BadHandlesAreRefused) {
    applet_host::GrabberHandle empty, offline, stale, foreign{this};
    {
        Grabber grabber(0);
        stale = grabber.handle;
    }
    ASSERT_EQ(applet.Info(FG_INFO_CREATE_OFFLINE, 0, 0, nullptr, &offline.object), FG_OK);
    ASSERT_EQ(applet.Info(FG_INFO_DESTROY_OFFLINE, 0, 0, offline.object, nullptr), FG_OK);
    for (Fg_Struct* fg :
         {static_cast<Fg_Struct*>(nullptr), empty.fg(), offline.fg(), stale.fg(), foreign.fg()}) {
        for (const Call& call : all)
            EXPECT_EQ(call.call(fg), call.badHandle) << call.function;
        EXPECT_EQ(applet.Fg_getLastErrorNumber(fg), FG_ERR_INVALID_HANDLE);
        EXPECT_EQ(applet.Fg_FreeGrabber(fg), FG_ERR_INVALID_HANDLE);
    }
}

} // namespace
