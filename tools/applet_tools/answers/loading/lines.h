/** The lines of a configuration file after its load: which are missing, ignored, refused or changed. */
#ifndef APPLET_TOOLS_ANSWERS_LOADING_LINES_H
#define APPLET_TOOLS_ANSWERS_LOADING_LINES_H

#include "applet_tools/answers/loading/FileKeys.h"
#include "applet_tools/answers/loading/Finding.h"

#include <string>
#include <vector>

namespace applet_tools {

/** A file and the state after its load. */
struct LoadedFile {
    const std::string& path;        /**< loads `asked` */
    const ConfigurationFile& asked; /**< only the lines that a load reads */
    const ConfigurationFile& state; /**< what a save would write now */
};

/** Why a load rejects a file with this header; empty if the header is valid. */
std::string headerTrouble(const ConfigurationFile& asked, FileKeys& keys);

/** A finding for each key that a load reads and the file has not. */
std::vector<Finding> missingKeys(const LoadedFile& file, FileKeys& keys, const ParameterList& parameters);

/** Examines all lines of the file; sets values and loads the file, and does not restore the board. `whole` may be
 *  large. */
std::vector<Finding> examineLines(ScratchSession& session, FileKeys& keys, const ConfigurationFile& whole,
                                  const LoadedFile& file);

} // namespace applet_tools

#endif
