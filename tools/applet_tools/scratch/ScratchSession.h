/** A scratch board at work, in its own process. */
#ifndef APPLET_TOOLS_SCRATCH_SCRATCHSESSION_H
#define APPLET_TOOLS_SCRATCH_SCRATCHSESSION_H

#include "applet_tools/scratch/BoardState.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace applet_tools {

/** A virtual board with the same applet, in the state of a live one. Anything may be set on it; the setters
 *  answer, and what reaches the design is logged. */
class ScratchSession {
public:
    explicit ScratchSession(const BoardOptions& options);

    /** Takes over the state of a live applet (see boardStateOf) and goes there. */
    void startFrom(json state);
    /** Back to the start state. Parameters and targets from before are gone. */
    void rewind();
    /** From now on the present state is the one to go back to. */
    void keep();

    Instance& instance() { return *m_instance; }
    const ParameterList& parameters() const { return *m_parameters; }
    /** The parameter as a whole, by its full name. */
    Target target(const std::string& name) const { return wholeOf(m_parameters->find(name)); }
    /** What differs from the live state: settable parameters by their names, "design" when the design's answers are those
     *  of the virtual board. */
    const std::vector<std::string>& assumed() const { return m_assumed; }
    /** Of those the ones without a setter. Nothing depends on them, so they matter only where they are asked for. */
    const std::vector<std::string>& assumedMeasurements() const { return m_assumedMeasurements; }
    /** What the virtual design has, without what a read would change: "Device1_...". */
    const std::vector<std::string>& designNames();
    const BoardOptions& options() const { return m_options; }
    /** Tells whoever waits for the job how far it is. */
    void tellProgress(std::size_t done, std::size_t total) const {
        if (onProgress) onProgress(done, total);
    }
    std::function<void(std::size_t done, std::size_t total)> onProgress;
    /** What the parameters hold after a bring-up on the live design's answers: {NAME: VALUE}. */
    const json& defaults();

private:
    void prepareBoard(LOOMdevice* device);
    void setValues();
    bool hasSetter(const Parameter& parameter);

    BoardOptions m_options;
    std::shared_ptr<const applet_host::AppletHost> m_host;
    json m_start;
    json m_defaults; // null until asked for
    std::optional<Instance> m_instance;
    std::optional<ParameterList> m_parameters;
    std::vector<std::string> m_designNames;
    std::vector<std::string> m_assumed, m_assumedMeasurements;
};

/** Something that a scratch board is asked to find out, from its start state. */
using Job = json (*)(ScratchSession& session, const json& arguments);

/** A job that can be asked for by its name. */
struct JobRow {
    const char* name;
    const char* words; /**< what it finds out, for -v: "what the setters accept" */
    Job run;
};

} // namespace applet_tools

#endif
