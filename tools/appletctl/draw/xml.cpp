#include "appletctl/draw/xml.h"

#include "applet_host/text_encoding.h"
#include "applet_tools/base/text.h"

namespace appletctl::xml {

std::string escaped(std::string_view text) { return applet_host::escapedMarkup(printable(text)); }

std::string attribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "=\"" + value + "\"";
}

} // namespace appletctl::xml
