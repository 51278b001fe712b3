// A runtime that does nothing, so that the time of a call is the applet's own. It has only the texts that a
// start-up needs.

#include "vexo/fg_api.h"

#include <cstdint>
#include <cstring>
#include <iterator>

#define ENTRY extern "C" __attribute__((visibility("default")))

ENTRY Fg_Struct* Fg_InitHandleSlaveAware(const char*, LOOMdevice*, fpga_design*, int) {
    static char inner;
    return reinterpret_cast<Fg_Struct*>(&inner);
}

ENTRY int Fg_FreeGrabber(Fg_Struct*) { return 0; }

ENTRY int Fg_getLastErrorNumber(Fg_Struct*) { return 0; }

namespace {

/** A design with one output format and no debug points. */
struct Text {
    const char* name;
    const char* value;
};
constexpr Text texts[] = {
    {"Device1_Process0_Debug_Entries", "0"},
    {"Device1_Process0_OutputFormat_FG_FORMAT_NoOfInputs", "1"},
    {"Device1_Process0_OutputFormat_FG_FORMAT_MaxBits", "16"},
    {"Device1_Process0_OutputFormat_FG_FORMAT_Input0", "FG_COL24"},
    {"Device1_Process0_OutputFormat_FG_FORMAT_InputFlag0", "0"},
};
constexpr int firstText = 1000;

} // namespace

ENTRY int Fg_getParameterIdByName(Fg_Struct*, const char* name) {
    for (int i = 0; i < static_cast<int>(std::size(texts)); ++i)
        if (std::strcmp(name, texts[i].name) == 0) return firstText + i;
    return name[0];
}

ENTRY int Fg_setParameterWithType(Fg_Struct*, int, const void*, int, FgParamTypes) { return 0; }

ENTRY int Fg_getParameterWithType(Fg_Struct*, int id, void* value, int, FgParamTypes type) {
    if (type == FG_PARAM_TEXT) {
        const char* const text = id >= firstText ? texts[id - firstText].value : "";
        std::memcpy(value, text, std::strlen(text) + 1);
    } else {
        *static_cast<std::uint32_t*>(value) = 16;
    }
    return 0;
}
