#include "applet_tools/base/words.h"

#include "applet_tools/base/text.h"

namespace applet_tools {
namespace {

constexpr const char* blanks = " \t\r\n";

/** Parses one word at `place` and advances `place` past it; true if the word is complete. */
bool takeWord(const std::string& text, std::size_t& place, std::string& word) {
    char quote = '\0';
    for (; place < text.size(); ++place) {
        const char c = text[place];
        if (quote == '\0' && std::string_view(blanks).find(c) != std::string_view::npos) break;
        if (c == '\\' && quote != '\'') {
            if (place + 1 == text.size()) {
                place = text.size();
                return false;
            }
            const char next = text[place + 1];
            // In double quotes a backslash before any other character is kept.
            if (quote == '"' && next != '"' && next != '\\') word += c;
            word += next;
            ++place;
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
    std::size_t place = 0;
    for (;;) {
        place = text.find_first_not_of(blanks, place);
        if (place == std::string::npos || text[place] == '#') return line;
        line.places.push_back(place);
        line.words.emplace_back();
        line.isOpen = !takeWord(text, place, line.words.back());
        line.end = place;
    }
}

std::string textFrom(const std::string& text, const WordLine& line, std::size_t word) {
    if (word >= line.places.size()) return "";
    return text.substr(line.places[word], line.end - line.places[word]);
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
