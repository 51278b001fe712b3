/** Helpers of the parsers of text files: the tokens of a line, and integers as decimal digits. */
#ifndef FILES_TEXT_TOKENS_H
#define FILES_TEXT_TOKENS_H

#include <algorithm>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <string_view>

namespace text_tokens {

/** Value of a key that the file lacks. */
inline constexpr std::string_view missingKey = "Error";

inline bool contains(std::string_view line, std::string_view text) {
    return line.find(text) != std::string_view::npos;
}

/**
 * The part before the first delimiter, without leading delimiters; empty if there is none. Removes it from
 * `line`.
 */
inline std::string_view takeToken(std::string_view& line, std::string_view delimiters) {
    line.remove_prefix(std::min(line.find_first_not_of(delimiters), line.size()));
    const std::size_t length = std::min(line.find_first_of(delimiters), line.size());
    const std::string_view token = line.substr(0, length);
    line.remove_prefix(std::min(length + 1, line.size()));
    return token;
}

/** Second of the parts between delimiters, where a run of these counts as one; empty if there is none. */
inline std::string_view secondToken(std::string_view line, std::string_view delimiters) {
    takeToken(line, delimiters);
    return takeToken(line, delimiters);
}

/** An integer in decimal digits. */
class Decimal {
public:
    template <std::integral T>
    explicit Decimal(T number) : m_end(std::to_chars(m_text, m_text + sizeof m_text, number).ptr) {}
    Decimal(const Decimal&) = delete;
    Decimal& operator=(const Decimal&) = delete;
    std::string_view text() const { return {m_text, static_cast<std::size_t>(m_end - m_text)}; }

private:
    char m_text[20]; // as many as the longest of 64 bits has, its sign included
    char* m_end;
};

} // namespace text_tokens

#endif
