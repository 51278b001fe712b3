#include "applet_host/typed_access.h"

#include "vexo/fg_errors.h"

namespace applet_host {

int readText(const AppletFunctions& applet, Fg_Struct* fg, int id, std::string& text) {
    char* allocated = nullptr;
    const int code = applet.Fg_getParameterWithType(fg, id, &allocated, 0, FG_PARAM_ALLOCATED_STRING);
    if (code != FG_OK || allocated == nullptr) return code;
    text = allocated;
    applet.Fg_freeParameterStringWithType(fg, id, allocated, 0, FG_PARAM_ALLOCATED_STRING);
    return FG_OK;
}

FieldParameterAccess accessTo(std::uint32_t first, std::vector<std::uint32_t>& elements) {
    return {.vtype = FG_PARAM_UINT32,
            .index = first,
            .count = static_cast<std::uint32_t>(elements.size()),
            .values = elements.data()};
}

} // namespace applet_host
