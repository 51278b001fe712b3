#include "appletctl/commands/signals/StatisticsTable.h"

#include "applet_tools/base/numbers.h"
#include "appletctl/base/terminal.h"

#include <unistd.h>

#include <cmath>

namespace appletctl {
namespace {

/** The number with two decimals at most. */
std::string rounded(double number) { return numberText(std::round(number * 100) / 100); }

} // namespace

StatisticsTable::StatisticsTable() {
    m_table.setTitles({"PICTURE", "COLOUR", "MINIMUM", "MEAN", "MAXIMUM", "CLIPPED"});
}

void StatisticsTable::addRows(const std::string& name, const PictureStatistics& picture) {
    for (std::size_t i = 0; i < picture.colours.size(); ++i) {
        const ColourStatistics& colour = picture.colours[i];
        m_table.addRow({name, PictureStatistics::names[i], numberText(colour.minimum), rounded(colour.mean()),
                        numberText(colour.maximum), rounded(100 * colour.clippedShare()) + " %"});
    }
}

std::string StatisticsTable::text() {
    addRows("all", m_all);
    return m_table.render(Style::forStream(STDOUT_FILENO));
}

} // namespace appletctl
