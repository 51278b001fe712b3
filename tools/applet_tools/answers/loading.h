/** Loads configuration files and tells what is lost of them. The applet does not: it says that something is
 *  missing but not what, and drops in silence what a setter refuses. All of it happens on the scratch board. */
#ifndef APPLET_TOOLS_ANSWERS_LOADING_H
#define APPLET_TOOLS_ANSWERS_LOADING_H

#include "applet_tools/applet/ConfigurationFile.h"
#include "applet_tools/applet/MemoryFile.h"
#include "applet_tools/applet/ParameterState.h"
#include "applet_tools/scratch/DesignSnapshot.h"
#include "applet_tools/scratch/ScratchBoard.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace applet_tools {

/** A fresh instance of the applet, which is asked what files hold. There is no list of keys here: the keys are
 *  those that it saves, and one that a load fails without is one that a load reads. */
class FileKeys {
public:
    explicit FileKeys(ScratchSession& session);

    /** The state after the start. */
    const ConfigurationFile& defaults() const { return m_defaults; }
    /** False for what is saved for the reader of the file, such as measurements, and for unknown keys. */
    bool isReadByLoad(std::string_view key);

private:
    Instance m_instance;
    ConfigurationFile m_defaults;
    MemoryFile m_file;
};

/** What became of one key. */
struct Finding {
    /** "file": nothing was loaded at all. "missing": no such key in the file. "unknown": no load reads the key.
     *  "repeated": only the first line of the key counts. "unreadable": no value of the parameter's kind.
     *  "refused": by the setter. "kept": refused by the setter, and yet it reads back. "cut": the end of a text.
     *  "unapplied": the setter takes the value, but a load does not hand it over. "rounded": to what the
     *  hardware can do. */
    std::string kind;
    std::string key; /**< empty for the whole file */
    std::string message;
    bool isLoss = true;
    nlohmann::ordered_json
        reached{};          /**< of a refused value: what the board holds because of it, as changes of the
                                           design (see DesignSnapshot.h); else null */
    bool isExamined = true; /**< false for a refused value for which no cause was looked for */
};

/** A load as the scratch board saw it. */
struct LoadOutcome {
    int code = 0;
    std::string state; /**< text of what a save would write then */
    std::vector<Finding> findings;
    std::vector<std::string> writes;     /**< of the design, in order */
    std::vector<DesignChange> changes{}; /**< in the design */
    std::vector<ParameterState> facts{}; /**< of all parameters */
};

/** Why a load takes nothing of the file; empty where it takes something. */
std::string wholeFileTrouble(ScratchSession& session, FileKeys& keys, const ConfigurationFile& asked);

/** Loads the file into the scratch board and looks what came of it; the board is not put back. `name` is what the file is
 *  called where that is not its path. */
LoadOutcome loadAndCompare(ScratchSession& session, FileKeys& keys, const std::string& file,
                           const std::string& name = "");

/** [{"kind", "name", "isLoss", "message", "reached"}, ...]. */
nlohmann::ordered_json asJson(const std::vector<Finding>& findings);

/** What a load would come to. */
struct LoadCheck {
    std::vector<Finding> findings;
    int code = 0;            /**< of the load */
    ConfigurationFile state; /**< what a save would write then */

    bool losesNothing() const;
};

/** Lets the scratch board load the file. Throws UsageError when it cannot be read. */
LoadCheck askCheck(ScratchBoard& scratch, const std::string& file);
/** The same for what was written to a file, which may be a FIFO. */
LoadCheck askCheck(ScratchBoard& scratch, const std::string& file, const ConfigurationFile& written);

/** The job of a scratch board behind it: loads {"file": FILE}, or as if it had {"text": BYTES}: {"findings", "code",
 *  "state"}. */
json checkJob(ScratchSession& session, const json& arguments);

} // namespace applet_tools

#endif
