#include "applet_host/text_encoding.h"

#include <cstddef>

namespace applet_host {
namespace {

/** Length of the UTF-8 sequence at `i`; 0 if it is invalid (overlong forms and surrogates included). */
std::size_t sequenceLength(std::string_view text, std::size_t i) {
    const auto byteAt = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
    const unsigned char first = byteAt(i);
    if (first < 0x80) return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || i + length > text.size()) return 0;
    for (std::size_t k = 1; k < length; ++k)
        if (!isContinuation(text[i + k])) return 0;
    const unsigned char second = byteAt(i + 1);
    if ((first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F)) return 0;
    if ((first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F)) return 0;
    return length;
}

bool isUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = sequenceLength(text, i);
        if (length == 0) return false;
        i += length;
    }
    return true;
}

std::string utf8FromLatin1(std::string_view text) {
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

} // namespace

std::string toUtf8(std::string_view text) { return isUtf8(text) ? std::string(text) : utf8FromLatin1(text); }

std::string toUtf8(const char* text) { return toUtf8(std::string_view(text != nullptr ? text : "")); }

std::string escapedMarkup(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
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

} // namespace applet_host
