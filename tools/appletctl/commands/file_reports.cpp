#include "appletctl/commands/file_reports.h"

#include "applet_tools/base/text.h"

#include <unistd.h>

#include <algorithm>

namespace appletctl {

void addDifferences(Report& report, const std::vector<Side>& sides,
                    const std::vector<Difference>& differences, NextCycle nextCycle) {
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
        if (nextCycle == NextCycle::remark && !isPlainOutput() && difference.isNextCycle) {
            cycles.push_back(difference.parameter + " from " + values[0] + " to " + values[1]);
            continue;
        }
        Words cells{difference.parameter};
        cells.insert(cells.end(), values.begin(), values.end());
        table.addRow(cells);
        ++shown;
    }
    if (shown > 0 || isPlainOutput()) report.text += table.render(Style::forStream(STDOUT_FILENO));
    if (!cycles.empty())
        report.text += std::string(shown == 0 ? "Nothing changes but the camera simulator's rates,"
                                              : "The camera simulator's rates move") +
                       " by one of its clock cycles: " + join(cycles, ", ") + ".\n";
}

void addFindings(Report& report, const std::vector<Finding>& findings) {
    report.document["findings"] = asJson(findings);
    if (const auto left = std::ranges::count(findings, false, &Finding::isExamined); left > 0)
        report.document["notExamined"] = left;
    for (const Finding& finding : findings) {
        if (!finding.isLoss) {
            report.text +=
                lineOf({finding.kind, toUtf8(finding.key.c_str()), finding.message}, finding.message);
            continue;
        }
        report.problems.push_back(finding.message);
        report.exitCode = exitRefused;
    }
}

} // namespace appletctl
