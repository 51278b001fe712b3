#include "appletctl/draw/xml.h"

#include "applet_tools/base/text.h"

namespace appletctl::xml {

std::string escaped(std::string_view text) {
    std::string escaped;
    for (const char c : printable(text)) {
        if (c == '&')
            escaped += "&amp;";
        else if (c == '<')
            escaped += "&lt;";
        else if (c == '>')
            escaped += "&gt;";
        else if (c == '"')
            escaped += "&quot;";
        else
            escaped += c;
    }
    return escaped;
}

std::string attribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "=\"" + value + "\"";
}

} // namespace appletctl::xml
