/** Splits a line of a shell or a scenario into words. */
#ifndef APPLET_TOOLS_BASE_WORDS_H
#define APPLET_TOOLS_BASE_WORDS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace applet_tools {

using Words = std::vector<std::string>;

/** True for a word of the form NAME=VALUE; any other word is a name or a file. */
bool isAssignment(std::string_view word);

/** Words as sh reads them: separated by blanks, with '..', ".." and backslashes to quote blanks and quotes;
 * # at the beginning of a word starts a comment. */
struct WordLine {
    Words words;
    std::vector<std::size_t> positions; /**< position of each word in the text */
    std::size_t end = 0;                /**< end of the last word */
    bool isOpen = false;                /**< an unclosed quote, or a lone backslash at the end */
};

/** The message about an open line. */
inline constexpr const char* unfinishedLine = "a quote is not closed, or a backslash ends the line";

WordLine splitLine(const std::string& text);

/** The line's text from that word on, including quotes. */
std::string textFrom(const std::string& text, const WordLine& line, std::size_t word);

/** Joins the words into a line that parses to the same words. */
std::string joinWords(const Words& words);

} // namespace applet_tools

#endif
