/** Statistics of the pictures that "grab" takes, as a table. */
#ifndef APPLETCTL_COMMANDS_SIGNALS_STATISTICSTABLE_H
#define APPLETCTL_COMMANDS_SIGNALS_STATISTICSTABLE_H

#include "applet_tools/pictures/statistics.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/applet_tools.h"

#include <string>

namespace appletctl {

/** A row for each colour of each picture, and of all pictures together. */
class StatisticsTable {
public:
    StatisticsTable();

    /** Counts a picture for the rows of all pictures. */
    void count(const PictureStatistics& picture) { m_all.add(picture); }
    /** Adds the rows of a picture. */
    void addRows(const std::string& name, const PictureStatistics& picture);

    const PictureStatistics& ofAll() const { return m_all; }
    /** The table, with the rows of all pictures at its end. */
    std::string text();

private:
    PictureStatistics m_all;
    Table m_table;
};

} // namespace appletctl

#endif
