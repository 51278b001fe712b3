/** The scratch board jobs that all front ends share. */
#ifndef APPLET_TOOLS_JOBS_H
#define APPLET_TOOLS_JOBS_H

#include "applet_tools/scratch/ScratchSession.h"

#include <span>

namespace applet_tools {

/** The jobs of the ask... functions of this library. A program passes them, with its own, to LiveSession. */
std::span<const JobRow> libraryJobs();

} // namespace applet_tools

#endif
