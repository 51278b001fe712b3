/** Predicts the effect of a change on a scratch board. */
#ifndef APPLET_TOOLS_ANSWERS_PLAN_H
#define APPLET_TOOLS_ANSWERS_PLAN_H

#include "applet_tools/answers/differences.h"
#include "applet_tools/scratch/DesignSnapshot.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace applet_tools {

/** A change in a client's view of a parameter. */
struct ParameterMove {
    std::string parameter;
    Move move;
};

/** [{"parameter", ...}, ...] with the members of each move (see ParameterState.h). */
nlohmann::ordered_json asJson(const std::vector<ParameterMove>& moves);

/** Tracks the changes on a scratch board between calls. */
class ChangeWatch {
public:
    explicit ChangeWatch(ScratchSession& session);

    struct Changes {
        std::vector<DesignChange> design;
        std::vector<ParameterMove> moves;
    };
    /** The changes since the last call, or since the start. `own` is the parameter that was set; its own
     *  moves are left out. */
    Changes take(const Parameter& own);

private:
    ScratchSession& m_session;
    DesignSnapshot m_design;
    std::vector<ParameterState> m_facts;
};

/** A parameter and the values of the design that its setter writes. */
struct Writer {
    std::string parameter; /**< its name, or "several parameters" for what no single setter writes */
    Words names;           /**< design parameters, in the order of their first writes */
};

/** The effect of loading a configuration file. */
struct FilePlan {
    LoadOutcome load;
    std::vector<Difference> differences; /**< between the state before it and the one after it */
    std::vector<ParameterMove> moves;    /**< of all parameters */
    /** For all values that are written or change. If several parameters write the same value, one that the load
     *  changes is preferred. */
    std::vector<Writer> writers;
};

/** Loads the file into the scratch board; does not restore it. Throws UsageError if it cannot be read. */
FilePlan planFile(ScratchSession& session, const std::string& file);

} // namespace applet_tools

#endif
