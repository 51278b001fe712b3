/** Lays out text for the width of a terminal. */
#ifndef APPLETCTL_BASE_LAYOUT_H
#define APPLETCTL_BASE_LAYOUT_H

#include "appletctl/base/applet_tools.h"

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace appletctl {

constexpr std::size_t unlimitedWidth = std::numeric_limits<std::size_t>::max();

/** Columns of a line on this stream: those of the terminal, else COLUMNS, else no limit. */
std::size_t lineWidth(int fileDescriptor);

/** Width of the longest word. */
std::size_t longestWord(std::string_view text);

/** Breaks the text at blanks into lines of at most that width, and a longer word after marks in it such as commas,
 *  slashes and underscores. */
std::vector<std::string> foldedLines(std::string_view text, std::size_t width);

/** Folds each line that is longer than the width. Continuation lines are indented to the second column of the
 *  line, if it has one, or a little more than the line itself. */
std::string wrapped(const std::string& text, std::size_t width);

} // namespace appletctl

#endif
