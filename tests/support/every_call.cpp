#include "support/every_call.h"

namespace support {

const std::vector<Forwarder>& forwarders() {
    const auto& applet = host().applet();
    static const std::vector<Forwarder> all = {
        {"Fg_getAppletId", false, [&](Fg_Struct* fg) { return applet.Fg_getAppletId(fg, 0); }},
        {"Fg_AcquireEx", false, [&](Fg_Struct* fg) { return applet.Fg_AcquireEx(fg, 0, 10, 0, nullptr); }},
        {"Fg_stopAcquireEx", false,
         [&](Fg_Struct* fg) { return applet.Fg_stopAcquireEx(fg, 0, nullptr, 0); }},
        {"Fg_getStatusEx", true, [&](Fg_Struct* fg) { return applet.Fg_getStatusEx(fg, 0, 0, 0, nullptr); }},
        {"Fg_getLastPicNumberEx", true,
         [&](Fg_Struct* fg) { return applet.Fg_getLastPicNumberEx(fg, 0, nullptr); }},
        {"Fg_getLastPicNumberBlockingEx", true,
         [&](Fg_Struct* fg) { return applet.Fg_getLastPicNumberBlockingEx(fg, 1, 0, 1, nullptr); }},
    };
    return all;
}

namespace {

const applet_host::AppletFunctions& api() { return host().applet(); }

using Named = std::pair<const char*, std::function<std::int64_t(Fg_Struct*)>>;

/** The result of a successful look-up: 1, or 0 for null and for an empty mask. */
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

int fileWithoutPlaceholder() {
    char pattern[] = "abc";
    return api().mkstemps(pattern, 0);
}

} // namespace

std::vector<Call> everyCall(const std::string& saved) {
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
    // It reads the memory first. The runtime refuses the id 0 of an unresolved name.
    add(set, 0, {{get, lacking}, {resolve, refused}, {set, lacking}},
        [](auto* fg) { return setOf(fg, FG_SENSORWIDTH, 512); });
    add(set, 0, {{get, unresolved}, {resolve, unresolved}, {set, unresolved}},
        [](auto* fg) { return setOf(fg, FG_DEBUGINENABLE, 1); });
    add(set, 0, {}, [=](auto* fg) { return saveThroughRuntime(fg, saved); });
    add(get, 0, {{get, lacking}, {resolve, refused}}, [](auto* fg) { return getOf(fg, FG_FILLLEVEL); });
    add(get, 0, {{get, lacking}}, [](auto* fg) { return getOf(fg, FG_NR_OF_DMAS); });
    add(get, 0, {}, [](auto* fg) { return getOf(fg, FG_WIDTH); });
    // The runtime refuses a text that it did not allocate; without the function there is nothing to do.
    add(free, refused, {{free, 0}}, freeOfForeignText);
    add(free, FG_ERR_STRING_TAG, {}, [](auto* fg) {
        return api().Fg_freeParameterStringWithType(fg, 2000001, nullptr, 0, FG_PARAM_TEXT);
    }).stored = errorBefore;
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
    addPointer(info, 1, {{info, 0}}, errorBefore,
               [](auto* fg) { return api().Fg_getParameterInfo(fg, 0) != nullptr; });
    addPointer("Fg_AllocShading", 0, {}, -1,
               [](auto* fg) { return api().Fg_AllocShading(fg, 0, 0) != nullptr; });
    add("Fg_getNrOfParameter", 164, {}, [](auto* fg) { return api().Fg_getNrOfParameter(fg); }).stored =
        errorBefore;

    const auto addWithoutHandle = [&](const char* function, int usual, auto call) {
        Call& added = add(function, usual, {}, [=](auto*) { return call(); });
        added.stored = errorBefore;
        added.badHandle = usual;
    };
    addWithoutHandle("Info", 1880, [] { return api().Info(2176, 0, 0, nullptr, nullptr); });
    addWithoutHandle("mkstemps", -1, fileWithoutPlaceholder);
    return all;
}

} // namespace support
