#include "applet_tools/answers/loading/long_lines.h"

#include <algorithm>
#include <cstddef>

namespace applet_tools {
namespace {

/** True if one of the pieces after the first begins with "KEY=". */
bool hasPieceFor(std::string_view line, std::string_view key) {
    for (std::size_t i = ConfigurationFile::longestLine; i < line.size();
         i += ConfigurationFile::longestLine) {
        const std::string_view piece = line.substr(i);
        if (piece.starts_with(key) && piece.substr(key.size()).starts_with('=')) return true;
    }
    return false;
}

} // namespace

bool isLong(const ConfigurationFile::Line& line) { return line.text.size() > ConfigurationFile::longestLine; }

std::string keyWithRestFor(const ConfigurationFile& file, std::string_view key) {
    const std::string_view text = file.text();
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string_view line = text.substr(begin, end - begin);
        if (hasPieceFor(line, key)) return std::string(line.substr(0, line.find('=')));
        begin = end + 1;
    }
    return "";
}

} // namespace applet_tools
