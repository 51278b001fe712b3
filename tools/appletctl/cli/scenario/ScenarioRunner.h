/** What the steps of a scenario work on. */
#ifndef APPLETCTL_CLI_SCENARIO_SCENARIORUNNER_H
#define APPLETCTL_CLI_SCENARIO_SCENARIORUNNER_H

#include "appletctl/cli/scenario/StationState.h"
#include "appletctl/commands/Context.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace appletctl {

/** The applet on its board, what the last step wrote, and the faults that were put in. They end with the
 * object. */
class ScenarioRunner {
public:
    explicit ScenarioRunner(Context& context);
    ~ScenarioRunner();
    ScenarioRunner(const ScenarioRunner&) = delete;
    ScenarioRunner& operator=(const ScenarioRunner&) = delete;

    Context& context() { return m_context; }
    Instance& instance() { return m_context.instance(); }
    const ParameterList& parameters() { return m_context.parameters(); }

    /** Control of the board. Throws UsageError when it is no virtual one. */
    const applet_host::BoardFunctions& board();

    /** What is known of the station; on the virtual board only. */
    StationState& stationState() { return *m_stationState; }

    /** From now on the writes count. */
    void forgetWrites();
    /** Looks for a write behind the one that was found before; a name may be the end of one, behind a _.
     * True if it is there. */
    bool findWrite(const std::string& name, const std::string& value);
    /** The writes behind the one that was found last, as the board logs them. */
    std::vector<std::string> writesLeft();

    /** The full name of a parameter of the design, which may be given by its end behind a _. A register's name is
     *  left as it is. Throws UsageError for an end that several have. */
    std::string designName(const std::string& name);
    /** Throws UsageError for what designName does not take, and for a name that the board does not know. */
    void requireKnown(const std::string& name);
    /** The same, but several names may end with it. */
    void requireKnownEnd(const std::string& name);
    /** All accesses of the parameter or register fail with the code; 0: no more. */
    void failName(const std::string& name, int code);
    /** Takes a parameter out of the design, and starts the applet anew on a fresh board. */
    void removeFromDesign(const std::string& name);
    /** The refusal of a name that the design does not have. */
    [[noreturn]] void refuseName(const std::string& name, const std::string& what);

private:
    void collectWrites();
    /** All parameters of the design. */
    std::vector<std::string> designNames();

    Context& m_context;
    std::vector<std::string> m_writes;
    std::size_t m_found = 0; // number of writes up to the one that was found last
    std::vector<std::string> m_failing;
    std::optional<StationState> m_stationState{std::in_place};
};

} // namespace appletctl

#endif
