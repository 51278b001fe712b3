/** The encoding of the applet's texts. */
#ifndef APPLET_HOST_LATIN1_H
#define APPLET_HOST_LATIN1_H

#include <string>
#include <string_view>

namespace applet_host {

/** Converts a text of the applet, ISO 8859-1, to UTF-8. */
inline std::string utf8FromLatin1(std::string_view text) {
    std::string converted;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            converted += c;
        } else {
            converted += static_cast<char>(0xC0 | (byte >> 6));
            converted += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return converted;
}

} // namespace applet_host

#endif
