/** Text helpers: encodings, case, joining. */
#ifndef APPLET_TOOLS_BASE_TEXT_H
#define APPLET_TOOLS_BASE_TEXT_H

#include "applet_host/text_encoding.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace applet_tools {

/** For texts of the applet and of users. */
using applet_host::toUtf8;

/** The text in UTF-8, converted from ISO 8859-1 if need be, with control characters as \xNN or \u00NN, so that it
 *  cannot disturb a terminal. */
std::string printable(std::string_view text);

/** The text in double quotes, printable, with its quotes and backslashes escaped by a backslash. */
std::string inQuotes(std::string_view text);

/** A text of the applet or a user, converted to UTF-8, in quotes like inQuotes. */
std::string quotedText(const std::string& text);

/** The same for the name of a file. */
inline std::string shownFile(const std::string& file) { return quotedText(file); }

/** Number of characters of a UTF-8 text; colour sequences do not count. */
std::size_t displayWidth(std::string_view text);

/** Truncates a UTF-8 text that is longer than this many bytes and appends its length in brackets. */
std::string shortened(const std::string& text, std::size_t mostBytes);

/** A text like that of quotedText; of a long one only this many bytes, and its length behind the quotes. */
std::string quotedBeginning(const std::string& text, std::size_t mostBytes);

/** The text without blanks at both ends. */
std::string_view trimmed(std::string_view text);

/** A word typed by the user, printable, in single quotes; a very long one is truncated. */
std::string inQuotedWord(std::string_view word);

/** The word quoted for a shell: in double quotes if it contains a blank or a special character. */
std::string asShellWord(std::string_view word);

std::string lowerCase(std::string_view text);

std::string join(const std::vector<std::string>& parts, std::string_view separator);

/** "a", "a and b", "a, b and c". */
std::string enumerated(std::vector<std::string> parts);

/** Number of single characters to insert, remove or replace, or neighbours to swap, to turn `a` into `b`; a lower
 *  bound if the lengths differ much. */
std::size_t editDistance(std::string_view a, std::string_view b);

/** The largest editDistance of a misspelt word: one for each three letters, at least one. */
std::size_t farthestTypo(std::string_view word);

/** The candidates that a user may have meant by the word, the likeliest first, at most three. Ignores case,
 *  the prefix "FG_" and what separates words ("_", "-", blanks); a part of a candidate counts as similar to it. */
std::vector<std::string> nearestWords(std::string_view word, const std::vector<std::string>& candidates);

/** The candidates with the part that is most similar to the word, at most three: for a misspelt part of a
 *  name. */
std::vector<std::string> nearestParts(std::string_view word, const std::vector<std::string>& candidates);

/** "; did you mean A or B?"; empty without names. */
std::string didYouMean(const std::vector<std::string>& names);

} // namespace applet_tools

#endif
