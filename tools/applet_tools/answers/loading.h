/** Loads configuration files and reports what is lost. The applet itself only reports that a key is
 *  missing, not which one, and silently drops values that a setter refuses. Runs on the scratch board. */
#ifndef APPLET_TOOLS_ANSWERS_LOADING_H
#define APPLET_TOOLS_ANSWERS_LOADING_H

#include "applet_tools/applet/ParameterState.h"
#include "applet_tools/applet/files/ConfigurationFile.h"
#include "applet_tools/applet/files/MemoryFile.h"
#include "applet_tools/scratch/DesignSnapshot.h"
#include "applet_tools/scratch/ScratchBoard.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace applet_tools {

/** A fresh instance of the applet, used to find out which keys files hold. There is no list of keys here:
 *  the keys are those that the applet saves, and a key is read by a load if the load fails without it. */
class FileKeys {
public:
    explicit FileKeys(ScratchSession& session);

    /** The state after the start. */
    const ConfigurationFile& defaults() const { return m_defaults; }
    /** False for unknown keys and for those that a load ignores, such as measurements. */
    bool isReadByLoad(std::string_view key);

private:
    Instance m_instance;
    ConfigurationFile m_defaults;
    MemoryFile m_file;
};

/** The result for one key. */
struct Finding {
    /** "file": nothing was loaded at all. "missing": no such key in the file. "unknown": no load reads the
     *  key. "repeated": only the first line of the key counts. "unreadable": not a value of the parameter's
     *  kind. "refused": by the setter. "kept": refused by the setter, but it reads back. "cut": the text was
     *  truncated. "unapplied": the setter accepts the value, but a load does not pass it on. "rounded": to a
     *  value that the hardware can use. */
    std::string kind;
    std::string key; /**< empty for a finding about the whole file */
    std::string message;
    bool isLoss = true;
    nlohmann::ordered_json reached{}; /**< for a refused value: its effect on the design, as changes
                                           (see DesignSnapshot.h); else null */
    bool isExamined = true;           /**< false for a refused value with no search for the cause */
    std::string followsFrom{}; /**< for a refused value that is accepted when the value of this key is not
                                           refused */
};

/** A load as seen on the scratch board. */
struct LoadOutcome {
    int code = 0;
    std::string state; /**< the text that a save would write afterwards */
    std::vector<Finding> findings;
    std::vector<std::string> writes;     /**< writes to the design, in order */
    std::vector<DesignChange> changes{}; /**< in the design */
    std::vector<ParameterState> states{}; /**< states of all parameters */
};

/** Why a load takes nothing from the file; empty if it takes something. */
std::string wholeFileTrouble(ScratchSession& session, FileKeys& keys, const ConfigurationFile& asked);

/** Loads the file into the scratch board and examines the result; does not restore the board. `name` is shown
 *  instead of the file's path. */
LoadOutcome loadAndCompare(ScratchSession& session, FileKeys& keys, const std::string& file,
                           const std::string& name = "");

/** [{"kind", "name", "isLoss", "message", "reached", "followsFrom"}, ...], the last two only where they apply. */
nlohmann::ordered_json asJson(const std::vector<Finding>& findings);

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
