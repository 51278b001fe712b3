/** The context in which a scenario's steps run. */
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

/** The applet on its board, the writes of the last step, and the injected faults. They end with the
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

    /** Control functions of the board. Throws UsageError if it is not virtual. */
    const applet_host::BoardFunctions& board();

    /** The state of the station; only on the virtual board. */
    StationState& stationState() { return *m_stationState; }

    /** Begins to record writes. */
    void forgetWrites();
    /** Looks for a write after the last one found; a name may be given by its end, after a _.
     * True if there is one. */
    bool findWrite(const std::string& name, const std::string& value);
    /** Adds the writes among the accesses of a step that was traced, whose trace has taken them from the log. */
    void addWrites(const std::vector<std::string>& accesses);
    /** The writes after the last one found, as the board logs them. */
    std::vector<std::string> writesLeft();

    /** The full name of a parameter of the design; it may be given by its end after a _. A register's name is
     *  not changed. Throws UsageError for an end that several names have. */
    std::string designName(const std::string& name);
    /** The kind (REGISTER_KIND_...) of the parameter of the design with this full name; empty for a register. */
    std::optional<int> kindOf(const std::string& full);
    /** Throws UsageError as designName does, and for a name that the board does not know. */
    void requireKnown(const std::string& name);
    /** The same, but several names may end with it. */
    void requireKnownEnd(const std::string& name);
    /** Makes all accesses of the parameter or register fail with the code; 0 clears that. */
    void failName(const std::string& name, int code);
    /** Removes a parameter from the design, and restarts the applet on a fresh board. */
    void removeFromDesign(const std::string& name);
    /** The error for a name that the design does not have. */
    [[noreturn]] void refuseName(const std::string& name, const std::string& what);

private:
    void startLog();
    void collectWrites();
    /** All parameters of the design. */
    std::vector<std::string> designNames();

    Context& m_context;
    std::vector<std::string> m_writes;
    std::size_t m_found = 0; // number of writes up to the last one found
    std::vector<std::string> m_failing;
    std::optional<StationState> m_stationState{std::in_place};
};

} // namespace appletctl

#endif
