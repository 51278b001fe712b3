#include "appletctl/base/Table.h"

#include "applet_tools/base/text.h"
#include "appletctl/base/layout.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/terminal.h"

#include <algorithm>
#include <numeric>

namespace appletctl {
namespace {

constexpr std::size_t gap = 2;              // blanks before each cell
constexpr std::size_t narrowestFolded = 24; // a column of text that is narrower is hard to read

std::string withoutEndBlanks(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

} // namespace

std::string Table::asRecords() const {
    std::string text, subject;
    for (const Line& line : m_lines) {
        if (line.kind == Kind::subject) subject = line.cells.front() + '\t';
        if (!line.isHeading()) text += subject + join(line.cells, "\t") + '\n';
    }
    return text;
}

std::vector<Table::Column> Table::measured() const {
    std::size_t most = 0;
    for (const Line& line : m_lines)
        if (!line.isHeading()) most = std::max(most, line.cells.size());
    std::vector<Column> columns(most);
    for (const Line& line : m_lines) {
        if (line.isHeading()) continue;
        // The last cell of a shorter row extends to the end of the line.
        const std::size_t count = line.cells.size() < most ? line.cells.size() - 1 : most;
        for (std::size_t i = 0; i < count; ++i) {
            columns[i].natural = std::max(columns[i].natural, displayWidth(line.cells[i]));
            columns[i].least = std::max(columns[i].least, longestWord(line.cells[i]));
            if (line.kind == Kind::row)
                columns[i].least =
                    std::max(columns[i].least, std::min(displayWidth(line.cells[i]), narrowestFolded));
        }
    }
    for (Column& column : columns)
        column.width = column.natural;
    return columns;
}

const std::vector<std::string>* Table::titles() const {
    const auto found = std::ranges::find(m_lines, Kind::titles, &Line::kind);
    return found == m_lines.end() ? nullptr : &found->cells;
}

/** The first cell, with the others and their titles below it; without titles all cells as one text. */
std::string Table::stackedText(const Line& line, std::size_t width) const {
    const std::string indent(gap, ' ');
    if (titles() == nullptr) return wrapped(indent + join(line.cells, indent), width);
    std::string text = indent + line.cells.front();
    for (std::size_t i = 1; i < line.cells.size(); ++i)
        if (!line.cells[i].empty() && i < titles()->size())
            text += '\n' + indent + indent + lowerCase((*titles())[i]) + ": " + line.cells[i];
    return wrapped(text, width);
}

/** Narrows columns until the lines fit; false if they cannot fit. */
bool Table::fit(std::vector<Column>& columns, std::size_t width) {
    std::size_t natural = 0, least = 0;
    for (const Column& column : columns) {
        if (!column.isShown) continue;
        natural += gap + column.natural;
        least += gap + column.least;
    }
    if (natural <= width) return true;
    if (least > width) return false;
    for (std::size_t excess = natural - width; excess > 0; --excess) {
        Column* widest = nullptr;
        for (Column& column : columns)
            if (column.isShown && column.width > column.least &&
                (widest == nullptr || column.width > widest->width))
                widest = &column;
        --widest->width;
    }
    return true;
}

/** Hides columns until the others fit, the least important first; false if that is not enough. */
bool Table::fitWithout(Layout& layout, std::size_t width) const {
    if (fit(layout.columns, width)) return true;
    if (titles() == nullptr) return false;
    for (const std::string& title : m_dispensable) {
        const auto found = std::ranges::find(*titles(), title);
        if (found == titles()->end()) continue;
        layout.columns[static_cast<std::size_t>(found - titles()->begin())].isShown = false;
        layout.hidden.push_back(title);
        if (fit(layout.columns, width)) return true;
    }
    return false;
}

Table::Layout Table::layoutFor(std::size_t width) const {
    const Layout complete{.columns = measured(), .hidden = {}};
    Layout above = complete;
    above.isFirstAbove = true;
    if (!above.columns.empty()) above.columns.front().isShown = false;
    const bool canBeAbove = titles() != nullptr && titles()->size() > 2;
    const std::size_t widthBelow = width - std::min(width, gap);
    Layout layout = complete;
    if (fit(layout.columns, width)) return layout;
    layout = above;
    if (canBeAbove && fit(layout.columns, widthBelow)) return layout;
    layout = complete;
    if (fitWithout(layout, width)) return layout;
    layout = above;
    if (canBeAbove && fitWithout(layout, widthBelow)) return layout;
    layout.isStacked = true;
    return layout;
}

std::string Table::rowText(const Line& line, const Layout& layout) const {
    const std::vector<Column>& columns = layout.columns;
    std::vector<std::vector<std::string>> cells;
    std::size_t height = 1;
    for (std::size_t i = 0; i < line.cells.size(); ++i) {
        cells.push_back(columns[i].width < columns[i].natural ? foldedLines(line.cells[i], columns[i].width)
                                                              : std::vector{line.cells[i]});
        if (columns[i].isShown) height = std::max(height, cells.back().size());
    }
    const std::string indent(layout.isFirstAbove ? gap : 0, ' ');
    std::string text = layout.isFirstAbove ? indent + line.cells.front() + '\n' : "";
    for (std::size_t row = 0; row < height; ++row) {
        std::string shown = indent;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            if (!columns[i].isShown) continue;
            const std::string part = row < cells[i].size() ? cells[i][row] : "";
            shown += std::string(gap, ' ') + part +
                     std::string(columns[i].width - std::min(columns[i].width, displayWidth(part)), ' ');
        }
        text += (row == 0 ? "" : "\n") + withoutEndBlanks(std::move(shown));
    }
    return text;
}

std::string Table::render(const Style& style, Detail detail) const {
    if (isPlainOutput()) return asRecords();
    const std::size_t width = outputWidth();
    const Layout layout = layoutFor(width);
    std::string text;
    for (const Line& line : m_lines) {
        if (line.isHeading()) {
            if (&line != &m_lines.front()) text += '\n';
            text += style.heading(line.cells.front()) + '\n';
        } else if (line.kind == Kind::titles) {
            if (!layout.isStacked && detail != Detail::rowsOnly)
                text += style.faint(rowText(line, layout)) + '\n';
        } else {
            text += (layout.isStacked ? stackedText(line, width) : rowText(line, layout)) + '\n';
        }
    }
    if (detail == Detail::titlesAndHidden && !layout.isStacked && !layout.hidden.empty())
        text += style.faint("  (too narrow for: " + join(layout.hidden, ", ") + ")") + '\n';
    return text;
}

} // namespace appletctl
