/** Text helpers: encodings, cases, joining. */
#ifndef APPLET_TOOLS_BASE_TEXT_H
#define APPLET_TOOLS_BASE_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace applet_tools {

/** The applet's texts are ISO 8859-1, those of a user usually UTF-8: valid UTF-8 stays, all else is taken for
 *  ISO 8859-1 and converted. Null gives the empty text. */
std::string toUtf8(const char* text);

/** The text with control characters as \xNN, so that it cannot disturb a terminal. */
std::string printable(std::string_view text);

/** The text in double quotes, printable, with its own quotes and backslashes behind a backslash. */
std::string inQuotes(std::string_view text);

/** Number of characters of a UTF-8 text; the sequences that colour it take no room. */
std::size_t displayWidth(std::string_view text);

/** The beginning of a UTF-8 text that is longer than so many bytes, with its length in brackets. */
std::string shortened(const std::string& text, std::size_t mostBytes);

/** A word that the user has typed, printable, in single quotes; of a very long one the beginning. */
std::string inQuotedWord(std::string_view word);

/** The word as a shell takes it: in double quotes where it holds a blank or another character with a meaning. */
std::string asShellWord(std::string_view word);

std::string lowerCase(std::string_view text);

std::string join(const std::vector<std::string>& parts, std::string_view separator);

/** Number of single characters to insert, remove or replace to make `a` into `b`; at least so many where the lengths
 *  differ much. */
std::size_t editDistance(std::string_view a, std::string_view b);

/** The candidates that a user may have meant by the word, the likeliest first, at most three. Case and the prefix
 *  "FG_" do not count; a part of a candidate is near to it. */
std::vector<std::string> nearestWords(std::string_view word, const std::vector<std::string>& candidates);

/** The candidates that hold a part that is nearest to the word, at most three: a misspelt part of a name. */
std::vector<std::string> nearestParts(std::string_view word, const std::vector<std::string>& candidates);

/** "; did you mean A or B?"; empty without names. */
std::string didYouMean(const std::vector<std::string>& names);

} // namespace applet_tools

#endif
