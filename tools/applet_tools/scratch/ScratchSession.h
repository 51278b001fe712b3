/** The scratch board's side: the session in the child process. */
#ifndef APPLET_TOOLS_SCRATCH_SCRATCHSESSION_H
#define APPLET_TOOLS_SCRATCH_SCRATCHSESSION_H

#include "applet_tools/scratch/BoardState.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace applet_tools {

/** A virtual board with the same applet, in the state of a live one. Any value may be set; the setters
 *  answer, and accesses to the design are logged. */
class ScratchSession {
public:
    explicit ScratchSession(const BoardOptions& options);

    /** Takes over the state of a live applet (see boardStateOf) as the start state. */
    void startFrom(json state);
    /** Restores the start state. Invalidates existing parameters and targets. */
    void rewind();
    /** Makes the present state the start state. */
    void keep();

    Instance& instance() { return *m_instance; }
    const ParameterList& parameters() const { return *m_parameters; }
    /** The parameter as a whole, by its full name. */
    Target target(const std::string& name) const { return wholeOf(m_parameters->find(name)); }
    /** Differences from the live state: settable parameters by name, and "design" if the values of the design
     *  are those of the virtual board. */
    const std::vector<std::string>& assumed() const { return m_assumed; }
    /** The same for parameters without a setter. Nothing depends on them, so they matter only if asked for. */
    const std::vector<std::string>& assumedMeasurements() const { return m_assumedMeasurements; }
    /** The design's values, except those that a read would change: "Device1_...". */
    const std::vector<std::string>& designNames();
    const BoardOptions& options() const { return m_options; }
    /** Reports the progress of the job. */
    void reportProgress(std::size_t done, std::size_t total) const {
        if (onProgress) onProgress(done, total);
    }
    std::function<void(std::size_t done, std::size_t total)> onProgress;
    /** The values after a bring-up with the live design's values: {NAME: VALUE}. */
    const json& defaults();

private:
    void prepareBoard(LOOMdevice* device);
    void setValues();
    bool hasSetter(const Parameter& parameter);

    BoardOptions m_options;
    std::shared_ptr<const applet_host::AppletHost> m_host;
    json m_start;
    json m_defaults; // null until requested
    std::optional<Instance> m_instance;
    std::optional<ParameterList> m_parameters;
    std::vector<std::string> m_designNames;
    std::vector<std::string> m_assumed, m_assumedMeasurements;
};

/** A query that runs on a scratch board, beginning in its start state. */
using Job = json (*)(ScratchSession& session, const json& arguments);

/** A job with its name. */
struct JobRow {
    const char* name;
    const char* words; /**< description for -v: "what the setters accept" */
    Job run;
};

} // namespace applet_tools

#endif
