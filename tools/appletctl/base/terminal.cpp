#include "appletctl/base/terminal.h"

#include "appletctl/base/layout.h"
#include "appletctl/base/output_mode.h"

#include <langinfo.h>
#include <locale.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace appletctl {

namespace {

/** The text of a variable of the environment; empty if it is not set. */
std::string_view variable(const char* name) {
    const char* const text = std::getenv(name);
    return text != nullptr ? text : "";
}

bool isUtf8Locale() {
    const locale_t user = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (user == nullptr) return false;
    const bool isUtf8 = std::string_view(nl_langinfo_l(CODESET, user)) == "UTF-8";
    freelocale(user);
    return isUtf8;
}

} // namespace

bool isCapableTerminal(int fileDescriptor) {
    if (outputMode().isPlain || outputMode().isForFile) return false;
    const char* terminal = std::getenv("TERM");
    const bool dumb = terminal == nullptr || std::string_view(terminal) == "dumb";
    return isatty(fileDescriptor) == 1 && !dumb;
}

bool isProgressWanted() {
    return !outputMode().isSilent && isCapableTerminal(STDOUT_FILENO) && isCapableTerminal(STDERR_FILENO);
}

std::size_t outputWidth() {
    return outputMode().isPlain || outputMode().isForFile ? unlimitedWidth : lineWidth(STDOUT_FILENO);
}

Style Style::forStream(int fileDescriptor) {
    const OutputMode& mode = outputMode();
    Style style;
    style.m_colour = mode.colour == "auto" ? isCapableTerminal(fileDescriptor) && variable("NO_COLOR").empty()
                                           : mode.colour == "always" && !mode.isPlain && !mode.isForFile;
    return style;
}

std::string Style::painted(const char* attributes, const std::string& text) const {
    if (!m_colour) return text;
    return std::string("\033[") + attributes + "m" + text + "\033[0m";
}

ColourDepth colourDepth(int fileDescriptor) {
    if (!Style::forStream(fileDescriptor).hasColour() || !isUtf8Locale()) return ColourDepth::none;
    const std::string_view depth = variable("COLORTERM"), terminal = variable("TERM");
    if (depth == "truecolor" || depth == "24bit" || terminal.ends_with("-direct"))
        return ColourDepth::of24Bits;
    return terminal.find("256color") != std::string_view::npos ? ColourDepth::of256 : ColourDepth::none;
}

bool canDrawUnicode(int fileDescriptor) { return isCapableTerminal(fileDescriptor) && isUtf8Locale(); }

} // namespace appletctl
