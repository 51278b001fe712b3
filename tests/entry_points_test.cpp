// A runtime that lacks functions: none, one, two or all of them. Each exported function shows what it needs,
// and nothing else.

#include "support/applet_fixture.h"
#include "support/sanitizers.h"
#include "support/temporary_folder.h"

#include <optional>
#include <set>

namespace {

using namespace support;

using Missing = std::set<std::string>;

const applet_host::AppletFunctions& api() { return host().applet(); }

constexpr int answered = 5;                 // by the functions that go straight to the runtime
constexpr int before = FG_ERR_OUT_OF_RANGE; // the last error before a call; none of them gives it

/** A call of an exported function; a pointer counts as 1, or 0 for null. */
struct Call {
    std::string function;
    std::function<std::int64_t(Fg_Struct*)> call;
    std::int64_t usual;
    /** Functions of the runtime, each with the result where it is missing; the first missing one decides. */
    std::vector<std::pair<std::string, std::int64_t>> needs{};
    /** The last error; of most calls it is the result, or 0 where that is no failure. */
    std::optional<int> stored{};
    std::int64_t badHandle = FG_ERR_INVALID_HANDLE;

    std::int64_t resultWithout(const Missing& missing) const {
        for (const auto& [entry, result] : needs)
            if (missing.contains(entry)) return result;
        return usual;
    }
    int errorAfter(std::int64_t result) const {
        return stored.value_or(result < 0 ? static_cast<int>(result) : FG_OK);
    }
};

using Named = std::pair<const char*, std::function<std::int64_t(Fg_Struct*)>>;

/** What looks something up that is there: 1, or 0 for null and for no mask. */
const Named lookups[] = {
    {"Fg_getParameterName", [](auto* fg) { return api().Fg_getParameterName(fg, 0) != nullptr; }},
    {"Fg_getEventMask", [](auto* fg) { return api().Fg_getEventMask(fg, "FG_OVERFLOW_CAM0") != 0; }},
    {"Fg_getEventName", [](auto* fg) { return api().Fg_getEventName(fg, 1 << 5) != nullptr; }},
};

const Named shading[] = {
    {"Fg_FreeShading", [](auto* fg) { return api().Fg_FreeShading(fg, nullptr); }},
    {"Shad_SetSubValueLine", [](auto* fg) { return api().Shad_SetSubValueLine(fg, nullptr, 1, 1, 1.f); }},
    {"Shad_SetMultValueLine", [](auto* fg) { return api().Shad_SetMultValueLine(fg, nullptr, 1, 1, 1.f); }},
    {"Shad_SetFixedPatternNoiseLine",
     [](auto* fg) { return api().Shad_SetFixedPatternNoiseLine(fg, nullptr, 1, 1, 1); }},
    {"Shad_GetMaxLine", [](auto* fg) { return api().Shad_GetMaxLine(fg, nullptr); }},
    {"Shad_GetAccess", [](auto* fg) { return api().Shad_GetAccess(fg, nullptr); }},
    {"Shad_FreeAccess", [](auto* fg) { return api().Shad_FreeAccess(fg, nullptr); }},
    {"Shad_WriteActLine", [](auto* fg) { return api().Shad_WriteActLine(fg, nullptr, 1); }},
};

int setOf(Fg_Struct* fg, int id, std::uint32_t value) {
    return api().Fg_setParameterWithType(fg, id, &value, 0, FG_PARAM_UINT32);
}

int getOf(Fg_Struct* fg, int id) {
    std::uint32_t out = 0;
    return api().Fg_getParameterWithType(fg, id, &out, 0, FG_PARAM_UINT32);
}

int saveThroughRuntime(Fg_Struct* fg, const std::string& file) {
    return api().Fg_setParameterWithType(fg, FG_DEBUGSAVECONFIG, file.c_str(), 0, FG_PARAM_TEXT);
}

int freeOfForeignText(Fg_Struct* fg) {
    return api().Fg_freeParameterStringWithType(fg, 2000001, nullptr, 0, FG_PARAM_ALLOCATED_STRING);
}

int sizeOfDocument(Fg_Struct* fg) {
    unsigned long size = 0;
    return api().Fg_getParameterInfoXML(fg, 0, nullptr, &size);
}

int fileWithoutPlaces() {
    char pattern[] = "abc";
    return api().mkstemps(pattern, 0);
}

std::vector<Call> calls(const std::string& saved) {
    constexpr std::int64_t lacking = FG_ERR_NOT_AVAILABLE, refused = FG_ERR_INVALID_ARGUMENT,
                           unresolved = FG_ERR_UNRESOLVED;
    const std::string resolve = "Fg_getParameterIdByName", set = "Fg_setParameterWithType",
                      get = "Fg_getParameterWithType", free = "Fg_freeParameterStringWithType",
                      info = "Fg_getParameterInfo", loaded = TEST_DATA_DIR "/saved_state.mcf";
    std::vector<Call> all;
    const auto add = [&](const std::string& function, std::int64_t usual, decltype(Call::needs) needs,
                         auto call) -> Call& {
        return all.emplace_back(Call{function, call, usual, std::move(needs)});
    };
    // It reads the memory first. The runtime refuses the id 0 of a name that was not resolved.
    add(set, 0, {{get, lacking}, {resolve, refused}, {set, lacking}},
        [](auto* fg) { return setOf(fg, FG_SENSORWIDTH, 512); });
    add(set, 0, {{get, unresolved}, {resolve, unresolved}, {set, unresolved}},
        [](auto* fg) { return setOf(fg, FG_DEBUGINENABLE, 1); });
    add(set, 0, {}, [=](auto* fg) { return saveThroughRuntime(fg, saved); });
    add(get, 0, {{get, lacking}, {resolve, refused}}, [](auto* fg) { return getOf(fg, FG_FILLLEVEL); });
    add(get, 0, {{get, lacking}}, [](auto* fg) { return getOf(fg, FG_NR_OF_DMAS); });
    add(get, 0, {}, [](auto* fg) { return getOf(fg, FG_WIDTH); });
    // The runtime does not take back a text that it never gave; without the function nothing is to do.
    add(free, refused, {{free, 0}}, freeOfForeignText);
    add("Fg_saveConfig", 0, {}, [=](auto* fg) { return api().Fg_saveConfig(fg, saved.c_str()); });
    add("Fg_loadConfig", 0, {}, [=](auto* fg) { return api().Fg_loadConfig(fg, loaded.c_str()); });
    add("Fg_getParameterInfoXML", 0, {}, sizeOfDocument);
    add("Fg_getParameterId", FG_TIMEOUT, {}, [](auto* fg) { return api().Fg_getParameterId(fg, 0); });
    add(resolve, FG_WIDTH, {}, [](auto* fg) { return api().Fg_getParameterIdByName(fg, "FG_WIDTH"); });
    for (const auto& [name, call] : lookups)
        add(name, 1, {}, call).badHandle = 0;
    for (const auto& [name, call] : shading)
        add(name, FG_ERR_NOT_SUPPORTED, {}, call);
    for (const Forwarder& forwarder : forwarders())
        add(forwarder.name, answered, {{forwarder.name, lacking}}, forwarder.call);

    const auto addPointer = [&](const std::string& function, std::int64_t usual, decltype(Call::needs) needs,
                                int stored, auto call) {
        Call& added = add(function, usual, std::move(needs), call);
        added.stored = stored;
        added.badHandle = 0;
    };
    addPointer(info, 1, {{info, 0}}, before,
               [](auto* fg) { return api().Fg_getParameterInfo(fg, 0) != nullptr; });
    addPointer("Fg_AllocShading", 0, {}, -1,
               [](auto* fg) { return api().Fg_AllocShading(fg, 0, 0) != nullptr; });
    add("Fg_getNrOfParameter", 164, {}, [](auto* fg) { return api().Fg_getNrOfParameter(fg); }).stored =
        before;

    const auto addWithoutHandle = [&](const char* function, int usual, auto call) {
        Call& added = add(function, usual, {}, [=](auto*) { return call(); });
        added.stored = before;
        added.badHandle = usual;
    };
    addWithoutHandle("Info", 1880, [] { return api().Info(2176, 0, 0, nullptr, nullptr); });
    addWithoutHandle("mkstemps", -1, fileWithoutPlaces);
    return all;
}

/** None, each, each two, and all. */
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
    /** Hides functions for the next bring-up. */
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
            EXPECT_EQ(grabber.set(FG_WIDTH, 3u), before);
            const std::int64_t result = call.call(grabber.fg());
            EXPECT_EQ(result, call.resultWithout(missing));
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
    /** Where Std_entry has failed. */
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
    const std::vector<Call> all = calls(folder / "saved.mcf");
};

TEST_F(EntryPoints, EachMissingOneShowsWhereItIsNeededAndNowhereElse) {
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

} // namespace
