#include "applet_tools/base/words.h"

#include "applet_tools/base/text.h"

namespace applet_tools {
namespace {

constexpr const char* blanks = " \t\r\n";

/** Parses one word at `position` and advances `position` past it; true if the word is complete. */
bool takeWord(const std::string& text, std::size_t& position, std::string& word) {
    char quote = '\0';
    for (; position < text.size(); ++position) {
        const char c = text[position];
        if (quote == '\0' && std::string_view(blanks).find(c) != std::string_view::npos) break;
        if (c == '\\' && quote != '\'') {
            if (position + 1 == text.size()) {
                position = text.size();
                return false;
            }
            const char next = text[position + 1];
            // In double quotes a backslash before any other character is kept.
            if (quote == '"' && next != '"' && next != '\\') word += c;
            word += next;
            ++position;
        } else if (quote == c) {
            quote = '\0';
        } else if (quote == '\0' && (c == '\'' || c == '"')) {
            quote = c;
        } else {
            word += c;
        }
    }
    return quote == '\0';
}

} // namespace

bool isAssignment(std::string_view word) { return word.find('=') != std::string_view::npos; }

WordLine splitLine(const std::string& text) {
    WordLine line;
    std::size_t position = 0;
    for (;;) {
        position = text.find_first_not_of(blanks, position);
        if (position == std::string::npos || text[position] == '#') return line;
        line.positions.push_back(position);
        line.words.emplace_back();
        line.isOpen = !takeWord(text, position, line.words.back());
        line.end = position;
    }
}

std::string textFrom(const std::string& text, const WordLine& line, std::size_t word) {
    if (word >= line.positions.size()) return "";
    return text.substr(line.positions[word], line.end - line.positions[word]);
}

std::string joinWords(const Words& words) {
    std::vector<std::string> quoted;
    for (const std::string& word : words) {
        const bool isPlain =
            !word.empty() && word.front() != '#' && word.find_first_of(" \t\r\n'\"\\") == std::string::npos;
        std::string inQuotes = "'";
        for (const char c : word)
            inQuotes += c == '\'' ? std::string("'\\''") : std::string(1, c);
        quoted.push_back(isPlain ? word : inQuotes + "'");
    }
    return join(quoted, " ");
}

} // namespace applet_tools
