#include "catalogue/xml_text.h"

namespace catalogue {
namespace {

/** What stands for a markup character; empty for all others. */
std::string_view replacement(char character) {
    switch (character) {
    case '"':
        return "&quot;";
    case '&':
        return "&amp;";
    case '\'':
        return "&apos;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    default:
        return {};
    }
}

bool isLetter(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

bool isDigitOrUnderscore(char character) {
    return (character >= '0' && character <= '9') || character == '_';
}

} // namespace

void putPiece(std::ostream& stream, XmlText filtered) {
    const std::string_view text = filtered.text;
    std::size_t written = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string_view instead = replacement(text[i]);
        if (instead.empty()) continue;
        put(stream, text.substr(written, i - written), instead);
        written = i + 1;
    }
    put(stream, text.substr(written));
}

void putPiece(std::ostream& stream, double number) {
    char digits[40];
    const auto end = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::general,
                                   static_cast<int>(stream.precision()));
    putPiece(stream, std::string_view(digits, end.ptr));
}

std::string xmlNameFilter(std::string_view text) {
    std::string name(text.size(), '\0');
    std::size_t length = 0;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (isLetter(text[i]) || (i > 0 && isDigitOrUnderscore(text[i]))) name[length++] = text[i];
    name.resize(length);
    return name;
}

} // namespace catalogue
