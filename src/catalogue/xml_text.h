/** How texts, names and numbers come into the XML document. */
#ifndef CATALOGUE_XML_TEXT_H
#define CATALOGUE_XML_TEXT_H

#include <charconv>
#include <concepts>
#include <ostream>
#include <string>
#include <string_view>

namespace catalogue {

/** A text whose markup characters are replaced while it is written. */
struct XmlText {
    std::string_view text;
};

/** `text` for an attribute or an element, written with `put`; null counts as empty. Nothing is copied. */
inline XmlText xmlStringFilter(const char* text) {
    return {text != nullptr ? std::string_view(text) : std::string_view()};
}

/** The ASCII letters of `text`, and its digits and underscores except at its first position. */
std::string xmlNameFilter(std::string_view text);

/*
 * One piece. All go straight to the buffer of the stream, whose precision counts and whose locale does not:
 * the document has thousands of them.
 */
inline void putPiece(std::ostream& stream, std::string_view text) {
    stream.rdbuf()->sputn(text.data(), static_cast<std::streamsize>(text.size()));
}
void putPiece(std::ostream& stream, XmlText filtered);
template <std::integral Number> void putPiece(std::ostream& stream, Number number) {
    char digits[20]; // as many as the longest of 64 bits has, its sign included
    putPiece(stream, std::string_view(digits, std::to_chars(digits, digits + sizeof digits, number).ptr));
}
void putPiece(std::ostream& stream, double number);

/** Writes texts, filtered texts and numbers in this order. */
template <typename... Pieces> void put(std::ostream& stream, const Pieces&... pieces) {
    (putPiece(stream, pieces), ...);
}

} // namespace catalogue

#endif
