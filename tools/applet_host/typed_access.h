/** Accesses to texts and tables, which need more than one argument or call. */
#ifndef APPLET_HOST_TYPED_ACCESS_H
#define APPLET_HOST_TYPED_ACCESS_H

#include "applet_host/AppletHost.h"

#include <cstdint>
#include <string>
#include <vector>

namespace applet_host {

/** Reads a text of any length. Returns the applet's code; `text` changes only if that is FG_OK. */
int readText(const AppletFunctions& applet, Fg_Struct* fg, int id, std::string& text);

/** The argument of an access of type FG_PARAM_FIELD_ACCESS to consecutive elements. It refers to `elements`. */
FieldParameterAccess accessTo(std::uint32_t first, std::vector<std::uint32_t>& elements);

} // namespace applet_host

#endif
