// A runtime that lacks functions: none, one, two or all of them. Each exported function shows what it needs, and
// nothing else.

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
    std::optional<int>
        stored{}; /**< the last error, if not the result, or 0 for a result that is no failure */
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
    const auto add = [&](const std::string& function, auto call, std::int64_t usual,
                         decltype(Call::needs) needs = {}) -> Call& {
        return all.emplace_back(Call{function, call, usual, std::move(needs)});
    };
    // It reads the memory first. The runtime refuses the id 0 of a name that was not resolved.
    add(set, [](auto* fg) { return setOf(fg, FG_SENSORWIDTH, 512); }, 0,
        {{get, lacking}, {resolve, refused}, {set, lacking}});
    add(set, [](auto* fg) { return setOf(fg, FG_DEBUGINENABLE, 1); }, 0,
        {{get, unresolved}, {resolve, unresolved}, {set, unresolved}});
    add(
        set, [=](auto* fg) { return saveThroughRuntime(fg, saved); }, 0);
    add(get, [](auto* fg) { return getOf(fg, FG_FILLLEVEL); }, 0, {{get, lacking}, {resolve, refused}});
    add(get, [](auto* fg) { return getOf(fg, FG_NR_OF_DMAS); }, 0, {{get, lacking}});
    add(
        get, [](auto* fg) { return getOf(fg, FG_WIDTH); }, 0);
    // The runtime does not take back a text that it never gave; without the function nothing is to do.
    add(free, freeOfForeignText, refused, {{free, 0}});
    add(
        "Fg_saveConfig", [=](auto* fg) { return api().Fg_saveConfig(fg, saved.c_str()); }, 0);
    add(
        "Fg_loadConfig", [=](auto* fg) { return api().Fg_loadConfig(fg, loaded.c_str()); }, 0);
    add("Fg_getParameterInfoXML", sizeOfDocument, 0);
    add(
        "Fg_getParameterId", [](auto* fg) { return api().Fg_getParameterId(fg, 0); }, FG_TIMEOUT);
    add(
        resolve, [](auto* fg) { return api().Fg_getParameterIdByName(fg, "FG_WIDTH"); }, FG_WIDTH);
    add(
        "Fg_getNrOfParameter", [](auto* fg) { return api().Fg_getNrOfParameter(fg); }, 164)
        .stored = before;
    for (const auto& [name, call] : lookups)
        add(name, call, 1).badHandle = 0;
    for (const auto& [name, call] : shading)
        add(name, call, FG_ERR_NOT_SUPPORTED);
    for (const Forwarder& forwarder : forwarders())
        add(forwarder.name, forwarder.call, answered, {{forwarder.name, lacking}});
    Call& tree =
        add(info, [](auto* fg) { return api().Fg_getParameterInfo(fg, 0) != nullptr; }, 1, {{info, 0}});
    tree.stored = before;
    tree.badHandle = 0;
    Call& noShading = add(
        "Fg_AllocShading", [](auto* fg) { return api().Fg_AllocShading(fg, 0, 0) != nullptr; }, 0);
    noShading.stored = -1;
    noShading.badHandle = 0;
    const auto addWithoutHandle = [&](const char* function, auto call, int usual) {
        Call& added = add(function, call, usual);
        added.stored = before;
        added.badHandle = usual;
    };
    addWithoutHandle(
        "Info", [](auto*) { return api().Info(2176, 0, 0, nullptr, nullptr); }, 1880);
    addWithoutHandle(
        "mkstemps", [](auto*) { return fileWithoutPlaces(); }, -1);
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
    void expectResult(Grabber& grabber, const Call& call, const Missing& missing) {
        SCOPED_TRACE(call.function);
        if (grabber.handle.object == nullptr) {
            EXPECT_EQ(call.call(grabber.fg()), call.badHandle);
            return;
        }
        EXPECT_EQ(grabber.set(FG_WIDTH, 3u), before);
        const std::int64_t result = call.call(grabber.fg());
        EXPECT_EQ(result, call.resultWithout(missing));
        EXPECT_EQ(grabber.lastError(), call.errorAfter(result));
    }
    /** The last error after a failure of the runtime. */
    int errorOfRuntime(Grabber& grabber) {
        board.answer(grabber.device, "Fg_getStatusEx", -9);
        board.last_error(grabber.device, -2010);
        applet.Fg_getStatusEx(grabber.fg(), 0, 0, 0, nullptr);
        return grabber.lastError();
    }

    const TemporaryFolder folder;
};

TEST_F(EntryPoints, EachMissingOneShowsWhereItIsNeededAndNowhereElse) {
    const std::vector<Call> all = calls(folder / "saved.mcf");
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
        const int handles = live("handles");
        Grabber grabber;
        std::optional<ExpectedLeak> innerHandle;
        if (missing.contains("Fg_FreeGrabber")) innerHandle.emplace();
        grabber.bringUp();
        innerHandle.reset();
        const bool starts =
            !missing.contains("Fg_InitHandle") || !missing.contains("Fg_InitHandleSlaveAware");
        EXPECT_EQ(grabber.error, starts ? FG_OK : FG_ERR_UNRESOLVED);
        EXPECT_EQ(grabber.handle.object != nullptr, starts);

        for (const Forwarder& forwarder : forwarders())
            board.answer(grabber.device, forwarder.name, answered);
        for (const Call& call : all)
            expectResult(grabber, call, missing);
        const bool hasLastError =
            !missing.contains("Fg_getStatusEx") && !missing.contains("Fg_getLastErrorNumber");
        EXPECT_EQ(errorOfRuntime(grabber), !starts        ? FG_ERR_INVALID_HANDLE
                                           : hasLastError ? -2010
                                                          : FG_ERR_NOT_AVAILABLE);
        const bool isFreed = !missing.contains("Fg_FreeGrabber");
        board.answer(grabber.device, "Fg_FreeGrabber", -77);
        EXPECT_EQ(grabber.free(), !starts ? FG_ERR_INVALID_HANDLE : isFreed ? -77 : FG_OK);
        EXPECT_EQ(live("handles"), handles + (starts && !isFreed));
        EXPECT_EQ(grabber.handle.object, nullptr);
    }
}

} // namespace
