#include "appletctl/commands/jobs.h"

#include "applet_tools/scratch/defaults_and_roles.h"
#include "applet_tools/scratch/influences.h"
#include "applet_tools/scratch/refusal.h"

namespace appletctl {
namespace {

constexpr JobRow jobs[] = {
    {"defaultsAndRoles", "what is a default, and what a configuration file does with each parameter",
     defaultsAndRolesJob},
    {"lint", "what is doubtful", lintJob},
    {"check", "what a load of the file loses", checkJob},
    {"defaults", "the values after a start", defaultsJob},
    {"deps", "what moves with what", depsJob},
    {"differences", "which values differ", differencesJob},
    {"expect", "what the design holds after the assignments", expectJob},
    {"fromBoard", "which values the board measures", fromBoardJob},
    {"influences", "what each parameter moves", influencesJob},
    {"limits", "what the setters accept", limitsJob},
    {"order", "an order in which all assignments pass", orderJob},
    {"plan", "what the change would do", planJob},
    {"routes", "what the applet writes for each route", routesJob},
    {"suggestion", "what would let the refused value through", suggestionJob},
    {"why", "what would free it", whyJob},
};

} // namespace

std::span<const JobRow> allJobs() { return jobs; }

} // namespace appletctl
