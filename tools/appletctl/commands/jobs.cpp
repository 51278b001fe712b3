#include "appletctl/commands/jobs.h"

#include "applet_tools/answers/jobs.h"

#include <iterator>
#include <vector>

namespace appletctl {
namespace {

constexpr JobRow jobs[] = {
    {"deps", "what moves with what", depsJob},
    {"limits", "what the setters accept", limitsJob},
    {"plan", "what the change would do", planJob},
    {"routes", "what the applet writes for each route", routesJob},
    {"why", "what would free it", whyJob},
};

} // namespace

std::span<const JobRow> allJobs() {
    static const std::vector<JobRow> all = [] {
        std::vector<JobRow> rows(libraryJobs().begin(), libraryJobs().end());
        rows.insert(rows.end(), std::begin(jobs), std::end(jobs));
        return rows;
    }();
    return all;
}

} // namespace appletctl
