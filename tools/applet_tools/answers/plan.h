/** What a change would do, tried on a scratch board. */
#ifndef APPLET_TOOLS_ANSWERS_PLAN_H
#define APPLET_TOOLS_ANSWERS_PLAN_H

#include "applet_tools/answers/differences.h"
#include "applet_tools/scratch/DesignSnapshot.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace applet_tools {

/** What a client sees of a parameter becomes another thing. */
struct ParameterMove {
    std::string parameter;
    Move move;
};

/** [{"parameter", ...}, ...] with the members of each move (see ParameterState.h). */
nlohmann::ordered_json asJson(const std::vector<ParameterMove>& moves);

/** Notes what changes on a scratch board from one call to the next. */
class ChangeWatch {
public:
    explicit ChangeWatch(ScratchSession& session);

    struct Changes {
        std::vector<DesignChange> design;
        std::vector<ParameterMove> moves;
    };
    /** What has changed since the last call, or since the start. `own` is the parameter that was set, whose moves are
     *  left out. */
    Changes take(const Parameter& own);

private:
    ScratchSession& m_session;
    DesignSnapshot m_design;
    std::vector<ParameterState> m_facts;
};

/** A parameter whose setter writes these values of the design. */
struct Writer {
    std::string parameter; /**< its name, or "several parameters" for what no single setter writes */
    Words names;           /**< of the design, in the order of their first writes */
};

/** What a load of a configuration file would do. */
struct FilePlan {
    LoadOutcome load;
    std::vector<Difference>
        differences; /**< between the state before and the one after, as "before" and "after" */
    std::vector<ParameterMove> moves; /**< of all parameters */
    std::vector<Writer>
        writers; /**< of all that is written or changes; of several that write the same value one
                                              that the load changes is preferred */
};

/** Loads the file into the scratch board, which is not put back. Throws UsageError when it cannot be read. */
FilePlan planFile(ScratchSession& session, const std::string& file);

} // namespace applet_tools

#endif
