#include "applet_tools/applet/files/LutFile.h"

#include "applet_tools/base/files.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

namespace applet_tools {
namespace {

constexpr std::string_view countKey = "nrOfElements";
constexpr std::size_t longestLine = 255; // a load reads a longer one in pieces

struct Line {
    std::size_t number; // in the file, from 1 on
    std::string_view text;
};

/** The lines of the file with their ends, as a load reads them. */
std::vector<Line> linesOf(std::string_view text) {
    std::vector<Line> lines;
    for (std::size_t number = 1; !text.empty();) {
        std::string_view line = text.substr(0, longestLine);
        line = line.substr(0, std::min(line.find('\n'), line.size() - 1) + 1);
        text.remove_prefix(line.size());
        lines.push_back({number, line.substr(0, line.find('\0'))});
        number += line.ends_with('\n') ? 1 : 0;
    }
    return lines;
}

/** The parts before and behind the first delimiter as a person reads them, the second one without its semicolon. */
struct Numbers {
    Numbers(std::string_view line, char delimiter) {
        const std::size_t length = std::min(line.find(delimiter), line.size());
        first = wholeNumber<std::int64_t>(trimmed(line.substr(0, length)));
        line.remove_prefix(std::min(length + 1, line.size()));
        second = wholeNumber<std::int64_t>(trimmed(line.substr(0, line.find(';'))));
    }
    std::optional<std::int64_t> first, second;
};

/** The second of the parts between delimiters as a load reads it, by the decimal digits at its beginning; empty if
 *  there is no second part. */
std::optional<std::uint32_t> secondPart(std::string_view line, std::string_view delimiters) {
    std::string_view part;
    for (int i = 0; i < 2; ++i) {
        line.remove_prefix(std::min(line.find_first_not_of(delimiters), line.size()));
        part = line.substr(0, line.find_first_of(delimiters));
        line.remove_prefix(part.size());
    }
    if (part.empty()) return std::nullopt;
    return static_cast<std::uint32_t>(
        std::strtol(std::string(part).c_str(), nullptr, 10)); // the lowest 32 bits
}

std::string shownLine(const Line& line) {
    constexpr std::size_t most = 40; // bytes
    return "line " + numberText(line.number) + ", " + quotedBeginning(std::string(trimmed(line.text)), most) +
           ", ";
}

/** Why a person does not get the number that the line says; empty if the load reads it so. */
std::string troubleWith(const Line& line, const std::string& what, std::optional<std::int64_t> meant,
                        std::uint32_t read, std::uint32_t largest) {
    if (meant && (*meant < 0 || *meant > largest))
        return shownLine(line) + "is outside the limits of " + what + ", 0 to " + numberText(largest);
    if (meant == read) return "";
    return shownLine(line) + "would be read as " + what + " = " + numberText(read);
}

/** The table of a colour as a load collects it: from the first line that holds its section's name on, in ascending
 *  order. */
class Table {
public:
    Table(std::string_view section, const LutLimits& limits) : m_section(section), m_limits(limits) {}

    std::string_view section() const { return m_section; }
    bool isBegun() const { return m_isBegun; }
    std::uint32_t count() const { return m_count; }

    /** Takes the line's element if it has the next one. Gives the trouble with it. `seen` is the section in which a person
     *  sees the line. */
    std::string take(const Line& line, std::string_view seen) {
        m_isBegun = m_isBegun || line.text.find(m_section) != std::string_view::npos;
        const std::string index = numberText(m_count);
        if (!m_isBegun || m_count == m_limits.elements ||
            line.text.find(index + ",") == std::string_view::npos)
            return "";
        const auto read = secondPart(line.text, ",");
        if (!read) return "";
        const Numbers numbers(line.text, ',');
        const bool isHere = seen == m_section && numbers.first == m_count;
        ++m_count;
        return troubleWith(line, "element " + index + " of " + std::string(m_section),
                           isHere ? numbers.second : std::nullopt, *read, m_limits.largest);
    }

private:
    std::string_view m_section;
    LutLimits m_limits;
    bool m_isBegun = false;
    std::uint32_t m_count = 0;
};

/** What is missing: a section or elements. `wanted` is the number of elements that a table needs. */
std::string missingIn(const std::array<Table, 3>& tables, std::uint32_t wanted) {
    for (const Table& table : tables) {
        const std::string section(table.section());
        if (!table.isBegun()) return "the section " + section + " is missing";
        if (table.count() < wanted)
            return section + " has " + numberText(table.count()) + " of " + numberText(wanted) +
                   " elements in ascending order, and the others would be 0";
    }
    return "";
}

/** The first trouble with an element, and the number of the others. */
std::string troubleWithElements(const std::vector<Line>& lines, std::array<Table, 3>& tables) {
    std::string first;
    std::size_t count = 0;
    std::string_view seen;
    for (const Line& line : lines) {
        for (const Table& table : tables)
            if (line.text.find(table.section()) != std::string_view::npos) seen = table.section();
        for (Table& table : tables) {
            std::string trouble = table.take(line, seen);
            if (trouble.empty()) continue;
            if (count++ == 0) first = std::move(trouble);
        }
    }
    if (count < 2) return first;
    return first + "; likewise " + numberText(count - 1) + (count == 2 ? " more element" : " more elements");
}

} // namespace

LutFile lookAtLutFile(const std::string& file, const LutLimits& limits) {
    const std::string text = requiredTextOfFile(file);
    const std::vector<Line> lines = linesOf(text);
    const auto key = std::ranges::find_if(
        lines, [](const Line& line) { return line.text.find(countKey) != std::string_view::npos; });
    if (key == lines.end())
        return {"it has no line " + std::string(countKey) + "=NUMBER;, so it is not a lookup table file"};
    const std::uint32_t count = secondPart(key->text, "='").value_or(0);
    std::string trouble = troubleWith(*key, std::string(countKey), Numbers(key->text, '=').second, count,
                                      std::numeric_limits<std::uint32_t>::max());
    if (!trouble.empty()) return {trouble};
    const LutLimits wanted = {std::min(count, limits.elements), limits.largest};
    std::array<Table, 3> tables = {Table("[red]", wanted), Table("[green]", wanted), Table("[blue]", wanted)};
    trouble = troubleWithElements(lines, tables);
    if (trouble.empty()) trouble = missingIn(tables, wanted.elements);
    return {trouble, count};
}

} // namespace applet_tools
