#include "appletctl/commands/jobs.h"

#include "appletctl/scratch/defaults_and_roles.h"

namespace appletctl {
namespace {

constexpr JobRow jobs[] = {
    {"defaultsAndRoles", defaultsAndRolesJob},
    {"lint", lintJob},
    {"check", checkJob},
    {"defaults", defaultsJob},
    {"deps", depsJob},
    {"differences", differencesJob},
    {"expect", expectJob},
    {"limits", limitsJob},
    {"order", orderJob},
    {"plan", planJob},
    {"routes", routesJob},
    {"suggestion", suggestionJob},
    {"why", whyJob},
};

} // namespace

std::span<const JobRow> allJobs() { return jobs; }

} // namespace appletctl
