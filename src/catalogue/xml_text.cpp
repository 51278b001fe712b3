#include "catalogue/xml_text.h"

#include <array>

namespace catalogue {
namespace {

/** The replacement of a markup character; empty for all others. */
constexpr std::string_view replacement(char character) {
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

/** A property of each character, looked up. */
template <typename Property> consteval auto tableOf(Property property) {
    std::array<bool, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = property(static_cast<char>(i));
    return table;
}

constexpr auto endsPlainText =
    tableOf([](char character) { return character == '\0' || !replacement(character).empty(); });
constexpr auto startsName = tableOf([](char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
});
constexpr auto continuesName = tableOf([](char character) {
    return startsName[static_cast<unsigned char>(character)] || (character >= '0' && character <= '9') ||
           character == '_';
});

} // namespace

void XmlWriter::add(XmlText filtered) {
    const char* text = filtered.text;
    while (true) {
        const char* end = text;
        while (!endsPlainText[static_cast<unsigned char>(*end)])
            ++end;
        add(std::string_view(text, end));
        if (*end == '\0') return;
        add(replacement(*end));
        text = end + 1;
    }
}

void XmlWriter::add(double number) {
    char digits[40];
    const auto end = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::general,
                                   static_cast<int>(m_stream.precision()));
    add(std::string_view(digits, end.ptr));
}

void XmlWriter::flush() {
    m_stream.rdbuf()->sputn(m_text, static_cast<std::streamsize>(m_length));
    m_length = 0;
}

void XmlWriter::writeThrough(std::string_view text) {
    flush();
    m_stream.rdbuf()->sputn(text.data(), static_cast<std::streamsize>(text.size()));
}

std::string xmlNameFilter(std::string_view text) {
    std::string name(text.size(), '\0');
    std::size_t length = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto& table = i == 0 ? startsName : continuesName;
        if (table[static_cast<unsigned char>(text[i])]) name[length++] = text[i];
    }
    name.resize(length);
    return name;
}

} // namespace catalogue
