#include "applet_tools/jobs.h"

#include "applet_tools/answers/dependencies.h"
#include "applet_tools/answers/differences.h"
#include "applet_tools/answers/expectation.h"
#include "applet_tools/answers/limits.h"
#include "applet_tools/answers/lint/lint.h"
#include "applet_tools/answers/loading/loading.h"
#include "applet_tools/answers/order.h"
#include "applet_tools/answers/plan.h"
#include "applet_tools/answers/routes.h"
#include "applet_tools/answers/why.h"
#include "applet_tools/scratch/defaults_and_roles.h"
#include "applet_tools/scratch/probe/influences.h"
#include "applet_tools/scratch/probe/refusal.h"

namespace applet_tools {
namespace {

constexpr JobRow jobs[] = {
    {"check", "what a load of the file loses", checkJob},
    {"defaults", "the values after a start", defaultsJob},
    {"defaultsAndRoles", "what is a default, and what a configuration file does with each parameter",
     defaultsAndRolesJob},
    {"deps", "what moves with what", dependenciesJob},
    {"differences", "which values differ", differencesJob},
    {"expect", "what the design holds after the assignments", expectJob},
    {"fromBoard", "which values the board measures", fromBoardJob},
    {"influences", "what each parameter moves", influencesJob},
    {"limits", "what the setters accept", limitsJob},
    {"lint", "suspicious settings", lintJob},
    {"moves", "what a set moves", movesJob},
    {"order", "an order in which all assignments pass", orderJob},
    {"planAssignments", "what the assignments would do", assignmentsPlanJob},
    {"routes", "what the applet writes for each route", routesJob},
    {"suggestion", "what would let the refused value through", suggestionJob},
    {"why", "what would free it", whyJob},
};

} // namespace

std::span<const JobRow> libraryJobs() { return jobs; }

} // namespace applet_tools
