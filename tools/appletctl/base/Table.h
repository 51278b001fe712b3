/** Tables of text. */
#ifndef APPLETCTL_BASE_TABLE_H
#define APPLETCTL_BASE_TABLE_H

#include "appletctl/base/applet_tools.h"

#include <cstddef>
#include <string>
#include <vector>

namespace appletctl {

class Style;

/** Columns are as wide as their widest cell. On a narrower line, cells fold at blanks; then the first cell
 *  moves above the others; then optional columns are hidden; then each cell gets a line of its own. */
class Table {
public:
    /** Names of the columns, shown on top. */
    void setTitles(std::vector<std::string> titles) { m_lines.push_back({Kind::titles, std::move(titles)}); }
    /** Titles of columns that may be hidden on a narrow terminal, the least important first. */
    void setDispensable(std::vector<std::string> titles) { m_dispensable = std::move(titles); }
    /** A line between the rows. Omitted with --plain. */
    void addHeading(std::string text) { m_lines.push_back({Kind::heading, {std::move(text)}}); }
    /** A heading for the following rows. With --plain it is their first cell. */
    void addSubject(std::string name) { m_lines.push_back({Kind::subject, {std::move(name)}}); }
    void addRow(std::vector<std::string> cells) { m_lines.push_back({Kind::row, std::move(cells)}); }
    /** What render shows beside the rows. */
    enum class Detail { rowsOnly, titles, titlesAndHidden };

    /** The text for the standard output, by default with the titles and a line that names the hidden columns.
     *  With --plain titles and rows are cells separated by tabs. */
    std::string render(const Style& style, Detail detail = Detail::titlesAndHidden) const;

private:
    enum class Kind { titles, heading, subject, row };
    struct Line {
        Kind kind;
        std::vector<std::string> cells;

        bool isHeading() const { return kind == Kind::heading || kind == Kind::subject; }
    };
    struct Column {
        std::size_t natural = 0; // width of its widest cell
        std::size_t least = 0;   // width down to which it may be folded
        std::size_t width = 0;
        bool isShown = true;
    };

    std::string asRecords() const;
    std::vector<Column> measured() const;
    /** The layout of the rows. */
    struct Layout {
        std::vector<Column> columns;
        std::vector<std::string> hidden; // titles of hidden columns
        bool isFirstAbove = false;       // the first cell has a line of its own, above the others
        bool isStacked = false;          // each cell has a line of its own
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

/** A table of rows below the subject. */
inline Table tableOf(const std::string& subject, const std::vector<std::vector<std::string>>& rows) {
    Table table;
    table.addSubject(subject);
    for (const std::vector<std::string>& cells : rows)
        table.addRow(cells);
    return table;
}

} // namespace appletctl

#endif
