#include "appletctl/commands/file_reports.h"

#include "applet_tools/base/text.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/report_text.h"
#include "appletctl/base/terminal.h"

#include <unistd.h>

#include <algorithm>

namespace appletctl {

void addDifferences(Report& report, const std::vector<Side>& sides,
                    const std::vector<Difference>& differences, Sides kind) {
    auto& rows = report.document["differences"] = nlohmann::ordered_json::array();
    std::vector<std::string> titles{"NAME"};
    for (const Side& side : sides)
        titles.push_back(side.title);
    Table table;
    table.setTitles(titles);
    std::size_t shown = 0;
    Words cycles;
    for (const Difference& difference : differences) {
        rows.push_back(difference.document);
        const Words& values = difference.values;
        if (!isPlainOutput() && difference.isNextCycle) {
            cycles.push_back(difference.parameter + (kind == Sides::inTime ? " from " : " ") + values[0] +
                             (kind == Sides::inTime ? " to " : " and ") + values[1]);
            continue;
        }
        Words cells{difference.parameter};
        cells.insert(cells.end(), values.begin(), values.end());
        table.addRow(cells);
        ++shown;
    }
    if (shown > 0 || isPlainOutput()) report.text += table.render(Style::forStream(STDOUT_FILENO));
    if (cycles.empty()) return;
    const std::string nothing = kind == Sides::inTime ? "Nothing changes" : "Nothing differs";
    const std::string rates = kind == Sides::inTime ? " move" : " differ";
    report.text += (shown == 0 ? nothing + " but the camera simulator's rates,"
                               : "The camera simulator's rates" + rates) +
                   " by one of its clock cycles: " + join(cycles, ", ") + ".\n";
}

void addFindings(Report& report, const std::vector<Finding>& findings) {
    report.document["findings"] = asJson(findings);
    if (const auto left = std::ranges::count(findings, false, &Finding::isExamined); left > 0)
        report.document["notExamined"] = left;
    for (const Finding& finding : findings) {
        if (!finding.isLoss || !finding.followsFrom.empty()) {
            report.text +=
                lineOf({nameOf(finding.kind), toUtf8(finding.key), finding.message}, finding.message);
            continue;
        }
        report.problems.push_back(finding.message);
        report.exitCode = exitRefused;
    }
}

} // namespace appletctl
