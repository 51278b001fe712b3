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

/** Bytes of the first characters of a word, as many as fit. */
std::size_t bytesWithin(std::string_view word, std::size_t width) {
    std::size_t bytes = 0;
    for (std::size_t end = 1; end <= word.size(); ++end) {
        const bool isWhole = end == word.size() || (static_cast<unsigned char>(word[end]) & 0xC0) != 0x80;
        if (!isWhole) continue;
        if (displayWidth(word.substr(0, end)) > width) break;
        bytes = end;
    }
    return std::max<std::size_t>(bytes, 1);
}

/** Bytes of the first part of a word that is longer than the width. */
std::size_t brokenAt(std::string_view word, std::size_t width) {
    const std::string_view head = word.substr(0, bytesWithin(word, width));
    for (const std::string_view marks : {",|", "=/", "_.-"}) {
        const std::size_t mark = head.find_last_of(marks);
        if (mark != std::string_view::npos && mark + 1 >= head.size() / 3) return mark + 1;
    }
    return head.size();
}

/** The indentation; limited by the longest word of the text, but never less than a minimum. */
std::size_t withRoomFor(std::string_view text, std::size_t indent, std::size_t width) {
    constexpr std::size_t least = 2;
    return std::clamp(width - std::min(width, longestWord(text)), std::min(least, indent), indent);
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
    const std::size_t restBegin = line.find_first_not_of(' ', first.size());
    if (restBegin == std::string_view::npos) return text;
    const std::string_view rest = line.substr(restBegin);
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

std::size_t longestWord(std::string_view text) {
    std::size_t longest = 0;
    for (std::size_t end = 0, begin = 0; begin < text.size(); begin = end + 1) {
        end = std::min(text.find(' ', begin), text.size());
        longest = std::max(longest, displayWidth(text.substr(begin, end - begin)));
    }
    return longest;
}

std::vector<std::string> foldedLines(std::string_view text, std::size_t width) {
    std::vector<std::string> lines;
    std::size_t begin = 0, end = 0; // of the current line
    // An indented text keeps its indentation in the first line.
    std::size_t wordBegin = std::min(text.find_first_not_of(' '), text.size());
    while (wordBegin < text.size()) {
        const std::size_t wordEnd = std::min(text.find(' ', wordBegin), text.size());
        const bool isFirstWord = end == begin;
        if (!isFirstWord && displayWidth(text.substr(begin, wordEnd - begin)) > width) {
            lines.emplace_back(text.substr(begin, end - begin));
            begin = wordBegin;
        }
        end = wordEnd;
        while (displayWidth(text.substr(begin, end - begin)) > width) { // a single word, maybe indented
            const std::size_t indent = std::min(text.find_first_not_of(' ', begin), end) - begin;
            const std::size_t room = indent < width ? width - indent : width;
            const std::size_t part =
                indent + brokenAt(text.substr(begin + indent, end - begin - indent), room);
            lines.emplace_back(text.substr(begin, part));
            begin += part;
        }
        wordBegin = std::min(text.find_first_not_of(' ', wordEnd), text.size());
    }
    if (begin < end || lines.empty()) lines.emplace_back(text.substr(begin, end - begin));
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
