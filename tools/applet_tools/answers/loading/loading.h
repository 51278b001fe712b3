/** Loads configuration files and reports what is lost. The applet itself only reports that a key is
 *  missing, not which one, and silently drops values that a setter refuses. Runs on the scratch board. */
#ifndef APPLET_TOOLS_ANSWERS_LOADING_LOADING_H
#define APPLET_TOOLS_ANSWERS_LOADING_LOADING_H

#include "applet_tools/answers/loading/FileKeys.h"
#include "applet_tools/answers/loading/Finding.h"
#include "applet_tools/applet/ParameterState.h"
#include "applet_tools/scratch/DesignSnapshot.h"
#include "applet_tools/scratch/ScratchBoard.h"

#include <string>
#include <vector>

namespace applet_tools {

/** A load as seen on the scratch board. */
struct LoadOutcome {
    int code = 0;
    std::string state; /**< the text that a save would write afterwards */
    std::vector<Finding> findings;
    std::vector<std::string> writes;      /**< writes to the design, in order */
    std::vector<DesignChange> changes{};  /**< in the design */
    std::vector<ParameterState> states{}; /**< states of all parameters */
};

/** Why a load takes nothing from the file; empty if it takes something. */
std::string wholeFileTrouble(ScratchSession& session, FileKeys& keys, const ConfigurationFile& asked);

/** Loads the file into the scratch board and examines the result; does not restore the board. `name` is shown
 *  instead of the file's path. */
LoadOutcome loadAndCompare(ScratchSession& session, FileKeys& keys, const std::string& file,
                           const std::string& name = "");

/** The result of a trial load. */
struct LoadCheck {
    std::vector<Finding> findings;
    int code = 0;            /**< result code of the load */
    ConfigurationFile state; /**< what a save would write afterwards */

    bool losesNothing() const;
};

/** Loads the file on the scratch board. Throws UsageError when it cannot be read. */
LoadCheck askCheck(ScratchBoard& scratch, const std::string& file);
/** The same for content that was written to a file, which may be a FIFO. */
LoadCheck askCheck(ScratchBoard& scratch, const std::string& file, const ConfigurationFile& written);

/** The scratch board job that implements it: loads {"file": FILE}, or {"text": BYTES} under that name: gives
 *  {"findings", "code", "state"}. */
json checkJob(ScratchSession& session, const json& arguments);

} // namespace applet_tools

#endif
