#include "appletctl/base/layout.h"

#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace appletctl {
namespace {

/** Start of the second column: after two or more blanks in the line. */
std::size_t secondColumn(std::string_view line) {
    const std::size_t first = line.find_first_not_of(' ');
    if (first == std::string_view::npos) return std::string_view::npos;
    const std::size_t blanks = line.find("  ", first);
    const std::size_t second =
        blanks == std::string_view::npos ? blanks : line.find_first_not_of(' ', blanks);
    return second == std::string_view::npos ? second : displayWidth(line.substr(0, second));
}

/** The indentation; limited by the longest word of the text, but never less than a minimum. */
std::size_t withRoomFor(std::string_view text, std::size_t indent, std::size_t width) {
    constexpr std::size_t least = 2;
    std::size_t longest = 0;
    for (const std::string& word : foldedLines(text, 1))
        longest = std::max(longest, displayWidth(word));
    return std::clamp(width - std::min(width, longest), std::min(least, indent), indent);
}

/** The indentation of the lines after the first. */
std::size_t hangingIndent(std::string_view line, std::string_view rest, std::size_t width) {
    const std::size_t second = secondColumn(line);
    if (second != std::string_view::npos && second <= width / 2) return withRoomFor(rest, second, width);
    const std::size_t indent = line.find_first_not_of(' ') + 2;
    return indent <= width / 2 ? withRoomFor(rest, indent, width) : 0;
}

std::string wrappedLine(std::string_view line, std::size_t width) {
    // The first line keeps its own indentation, so only the rest is folded to the narrower width.
    const std::string first = foldedLines(line, width).front();
    std::string text = first;
    const std::size_t behind = line.find_first_not_of(' ', first.size());
    if (behind == std::string_view::npos) return text;
    const std::string_view rest = line.substr(behind);
    const std::size_t indent = hangingIndent(line, rest, width);
    for (const std::string& next : foldedLines(rest, width - indent))
        text += '\n' + std::string(indent, ' ') + next;
    return text;
}

} // namespace

std::size_t lineWidth(int fileDescriptor) {
    winsize size{};
    if (isatty(fileDescriptor) == 1 && ioctl(fileDescriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    const char* const columns = std::getenv("COLUMNS");
    const auto wanted = wholeNumber<std::size_t>(columns != nullptr ? columns : "");
    return wanted && *wanted > 0 ? *wanted : unlimitedWidth;
}

std::vector<std::string> foldedLines(std::string_view text, std::size_t width) {
    std::vector<std::string> lines;
    std::size_t begin = 0, end = 0; // of the current line
    // An indented text keeps its indentation in the first line.
    std::size_t place = std::min(text.find_first_not_of(' '), text.size());
    while (place < text.size()) {
        const std::size_t wordEnd = std::min(text.find(' ', place), text.size());
        const bool isFirstWord = end == begin;
        if (!isFirstWord && displayWidth(text.substr(begin, wordEnd - begin)) > width) {
            lines.emplace_back(text.substr(begin, end - begin));
            begin = place;
        }
        end = wordEnd;
        place = std::min(text.find_first_not_of(' ', wordEnd), text.size());
    }
    lines.emplace_back(text.substr(begin, end - begin));
    return lines;
}

std::string wrapped(const std::string& text, std::size_t width) {
    std::string result;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string_view line = std::string_view(text).substr(begin, end - begin);
        if (displayWidth(line) > width)
            result += wrappedLine(line, width);
        else
            result += line;
        if (end < text.size()) result += '\n';
        begin = end + 1;
    }
    return result;
}

} // namespace appletctl
