#include "appletctl/commands/jobs.h"

#include "applet_tools/jobs.h"

#include <iterator>
#include <vector>

namespace appletctl {
namespace {

constexpr JobRow jobs[] = {
    {"plan", "what the change would do", planJob},
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
