/** Encodings of texts: the applet has ISO 8859-1, and UTF-8 where a client has set a text; documents have markup. */
#ifndef APPLET_HOST_TEXT_ENCODING_H
#define APPLET_HOST_TEXT_ENCODING_H

#include <string>
#include <string_view>

namespace applet_host {

/** True for a byte within a UTF-8 sequence, behind the first. */
constexpr bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

/** The text if it is valid UTF-8; otherwise it is taken as ISO 8859-1 and converted. */
std::string toUtf8(std::string_view text);
/** The same; empty for null. */
std::string toUtf8(const char* text);

/** The text for use between the tags of XML or HTML, or in double quotes in a tag. */
std::string escapedMarkup(std::string_view text);

} // namespace applet_host

#endif
