/** Pieces of XML and HTML. */
#ifndef APPLETCTL_DRAW_XML_H
#define APPLETCTL_DRAW_XML_H

#include "appletctl/base/applet_tools.h"

#include <string>
#include <string_view>

namespace appletctl::xml {

/** Text between tags or in an attribute, control characters as \xNN. */
std::string escaped(std::string_view text);

/** " NAME="VALUE"": the value must be escaped. */
std::string attribute(const char* name, const std::string& value);

} // namespace appletctl::xml

#endif
