#include "appletctl/scratch/jobs.h"

#include <stdexcept>

namespace appletctl {
namespace {

struct JobRow {
    const char* name;
    Job job;
};

constexpr JobRow jobs[] = {
    {"defaultsAndRoles", defaultsAndRolesJob},
    {"lint", lintJob},
    {"check", checkJob},
    {"defaults", defaultsJob},
    {"deps", depsJob},
    {"differences", differencesJob},
    {"expect", expectJob},
    {"influences", influencesJob},
    {"limits", limitsJob},
    {"order", orderJob},
    {"plan", planJob},
    {"routes", routesJob},
    {"suggestion", suggestionJob},
    {"why", whyJob},
};

} // namespace

Job findJob(const std::string& name) {
    for (const JobRow& row : jobs)
        if (name == row.name) return row.job;
    throw std::logic_error("no job '" + name + "'");
}

} // namespace appletctl
