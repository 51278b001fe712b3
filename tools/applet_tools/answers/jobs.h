/** What a scratch board can be asked for by every door. */
#ifndef APPLET_TOOLS_ANSWERS_JOBS_H
#define APPLET_TOOLS_ANSWERS_JOBS_H

#include "applet_tools/scratch/ScratchSession.h"

#include <span>

namespace applet_tools {

/** The jobs behind the ask... functions of this library. A program hands them to its LiveSession, with its own. */
std::span<const JobRow> libraryJobs();

} // namespace applet_tools

#endif
