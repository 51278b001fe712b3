/** The values of a configuration file that setters refused: what they reached, and why they were refused. */
#ifndef APPLET_TOOLS_ANSWERS_LOADING_REFUSED_VALUES_H
#define APPLET_TOOLS_ANSWERS_LOADING_REFUSED_VALUES_H

#include "applet_tools/answers/loading/Finding.h"
#include "applet_tools/applet/files/ConfigurationFile.h"
#include "applet_tools/scratch/DesignSnapshot.h"
#include "applet_tools/scratch/ScratchSession.h"

#include <string>
#include <vector>

namespace applet_tools {

/** The consequence of each refused value; empty for the other findings. Names the causes of refusals that follow from
 *  others. `loaded` is the design after the load, `before` the state before it. Does not restore the board. */
std::vector<std::string> outcomesOf(ScratchSession& session, const ConfigurationFile& asked,
                                    const ConfigurationFile& before, const DesignSnapshot& loaded,
                                    std::vector<Finding>& findings);

/** Adds the cause of the limit, the nearest value and possible changes to the first refusals, in the state
 *  after the load. For the others it names the command that finds them, with the name of the file. */
void addCauses(ScratchSession& session, const std::string& file, const ConfigurationFile& asked,
               std::vector<Finding>& findings);

} // namespace applet_tools

#endif
