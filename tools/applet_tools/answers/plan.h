/** Predicts the effect of a change on a scratch board. */
#ifndef APPLET_TOOLS_ANSWERS_PLAN_H
#define APPLET_TOOLS_ANSWERS_PLAN_H

#include "applet_tools/answers/differences.h"
#include "applet_tools/scratch/DesignSnapshot.h"
#include "applet_tools/scratch/LiveSession.h"

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
    std::vector<ParameterState> m_states;
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

/** The effect of assignments: a row for each, with the members of an AssignmentResult, "changes" and "moves"; a
 *  refused one is the last, with "error" {..., "message"}. Then the names after it. */
struct AssignmentsPlan {
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    Words notSet{};
    /** One or more lines for each assignment. */
    std::string words{};
};

/** The effect on the state of the live applet. Nothing is set there, and assignments that would write a file
 *  are left out. Throws UsageError for a word that is not an assignment. */
AssignmentsPlan askPlan(LiveSession& live, const Words& assignments);

/** The scratch board job that implements it: {"assignments": [WORD, ...]}: {"rows", "notSet", "words"}. */
json assignmentsPlanJob(ScratchSession& session, const json& arguments);

} // namespace applet_tools

#endif
