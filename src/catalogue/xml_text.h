/** Writing of texts, names and numbers into the XML document. */
#ifndef CATALOGUE_XML_TEXT_H
#define CATALOGUE_XML_TEXT_H

#include <charconv>
#include <concepts>
#include <ostream>
#include <string>
#include <string_view>

namespace catalogue {

/** A text; its markup characters are replaced while it is written. Never null. */
struct XmlText {
    const char* text;
};

/** `text` for an attribute or an element, written with `put`; null counts as empty. Nothing is copied. */
inline XmlText xmlStringFilter(const char* text) { return {text != nullptr ? text : ""}; }

/** The ASCII letters of `text`, and its digits and underscores except at its first position. */
std::string xmlNameFilter(std::string_view text);

/**
 * Joins texts, filtered texts and numbers, and writes them to the buffer of a stream in few calls: the document has
 * thousands. The stream's precision applies, its locale does not. Output may be buffered until flush().
 */
class XmlWriter {
public:
    explicit XmlWriter(std::ostream& stream) : m_stream(stream) {}
    XmlWriter(const XmlWriter&) = delete;
    XmlWriter& operator=(const XmlWriter&) = delete;

    template <typename... Pieces> void put(const Pieces&... pieces) { (add(pieces), ...); }
    void flush();

private:
    void add(std::string_view text) {
        if (text.size() > sizeof m_text - m_length) return writeThrough(text);
        text.copy(m_text + m_length, text.size());
        m_length += text.size();
    }
    void add(XmlText filtered);
    template <std::integral Number> void add(Number number) {
        char digits[20]; // as many as the longest of 64 bits has, its sign included
        add(std::string_view(digits, std::to_chars(digits, digits + sizeof digits, number).ptr));
    }
    void add(double number);
    void writeThrough(std::string_view text);

    std::ostream& m_stream;
    std::size_t m_length = 0;
    char m_text[4096];
};

/** Writes texts, filtered texts and numbers in this order. */
template <typename... Pieces> void put(std::ostream& stream, const Pieces&... pieces) {
    XmlWriter writer(stream);
    writer.put(pieces...);
    writer.flush();
}

} // namespace catalogue

#endif
