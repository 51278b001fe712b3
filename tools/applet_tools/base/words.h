/** A line of a shell or a scenario as words. */
#ifndef APPLET_TOOLS_BASE_WORDS_H
#define APPLET_TOOLS_BASE_WORDS_H

#include <cstddef>
#include <string>
#include <vector>

namespace applet_tools {

using Words = std::vector<std::string>;

/** Words as sh reads them: parted by blanks, with '..', ".." and backslashes for what a blank or a quote is
 * to be part of; # at the beginning of a word starts a comment. */
struct WordLine {
    Words words;
    std::vector<std::size_t> places; /**< where each word begins in the text */
    std::size_t end = 0;             /**< of the last word */
    bool isOpen = false;             /**< a quote is not closed, or the last character is a lone backslash */
};

WordLine splitLine(const std::string& text);

/** The line's text from that word on, with its quotes. */
std::string textFrom(const std::string& text, const WordLine& line, std::size_t word);

/** The words as one line that reads as the same words again. */
std::string joinWords(const Words& words);

} // namespace applet_tools

#endif
