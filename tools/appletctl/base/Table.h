/** Lines of cells in columns. */
#ifndef APPLETCTL_BASE_TABLE_H
#define APPLETCTL_BASE_TABLE_H

#include "appletctl/base/applet_tools.h"

#include <cstddef>
#include <string>
#include <vector>

namespace appletctl {

class Style;

/** Columns are as wide as their widest cell. Where the line has less room, cells fold at blanks; then the first cell
 *  moves above the others; then columns go that may go; then each cell gets a line of its own. */
class Table {
public:
    /** Names of the columns, shown above all. */
    void setTitles(std::vector<std::string> titles) { m_lines.push_back({Kind::titles, std::move(titles)}); }
    /** Titles of columns that may be left out on a narrow terminal, the least important first. */
    void setDispensable(std::vector<std::string> titles) { m_dispensable = std::move(titles); }
    /** A line between the rows. With --plain there is none. */
    void addHeading(std::string text) { m_lines.push_back({Kind::heading, {std::move(text)}}); }
    /** A heading that says what the following rows are about. With --plain it is their first cell. */
    void addSubject(std::string name) { m_lines.push_back({Kind::subject, {std::move(name)}}); }
    void addRow(std::vector<std::string> cells) { m_lines.push_back({Kind::row, std::move(cells)}); }
    /** For the standard output. With --plain the titles and rows as cells with tabs between them. */
    std::string render(const Style& style) const;

private:
    enum class Kind { titles, heading, subject, row };
    struct Line {
        Kind kind;
        std::vector<std::string> cells;

        bool isHeading() const { return kind == Kind::heading || kind == Kind::subject; }
    };
    struct Column {
        std::size_t natural = 0; // width of its widest cell
        std::size_t least = 0;   // down to which it may be folded
        std::size_t width = 0;
        bool isShown = true;
    };

    std::string asRecords() const;
    std::vector<Column> measured() const;
    /** How the rows are laid out. */
    struct Layout {
        std::vector<Column> columns;
        std::vector<std::string> hidden; // titles of columns that are left out
        bool isFirstAbove = false;       // the first cell has a line of its own, above the others
        bool isStacked = false;          // each cell has
    };
    Layout layoutFor(std::size_t width) const;
    static bool fit(std::vector<Column>& columns, std::size_t width);
    bool fitWithout(Layout& layout, std::size_t width) const;
    std::string rowText(const Line& line, const Layout& layout) const;
    std::string stackedText(const Line& line, std::size_t width) const;
    const std::vector<std::string>* titles() const;

    std::vector<Line> m_lines;
    std::vector<std::string> m_dispensable;
};

} // namespace appletctl

#endif
