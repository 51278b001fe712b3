/** A live applet, and a scratch board beside it to try things on. */
#ifndef APPLET_TOOLS_SCRATCH_LIVESESSION_H
#define APPLET_TOOLS_SCRATCH_LIVESESSION_H

#include "applet_tools/applet/ParameterList.h"
#include "applet_tools/applet/values.h"
#include "applet_tools/scratch/ScratchBoard.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>

namespace applet_tools {

class ScratchSession;

/** The live applet and the scratch board, each made when it is first asked for. Members that bring the applet up
 *  throw what Instance throws, those that ask the scratch board what ScratchBoard throws. */
class LiveSession {
public:
    /** A scratch board splits the process, so it has to be wanted here, before any library is loaded. */
    enum class Scratch {
        none,
        withoutDesign, /**< does not know the answers of the live design, which shows no parameters for it */
        wanted
    };
    ~LiveSession();
    LiveSession(const LiveSession&) = delete;
    LiveSession& operator=(const LiveSession&) = delete;
    /** `jobs` are what the scratch board can be asked for, `observe` is for what waits for its answers. */
    explicit LiveSession(const BoardOptions& options, Scratch scratch = Scratch::none,
                         std::span<const JobRow> jobs = {}, ObserveWork observe = {});

    /** A virtual board is the station that VBOARD_STATION names, if it names one. */
    Instance& instance();
    /** False before the first use, and after a restart that failed. */
    bool isUp() const { return m_instance.has_value(); }
    /** A fresh board and a new bring-up of the applet on it, from the libraries that are loaded. Parameters from
     *  before are gone. */
    void restart();
    const ParameterList& parameters();
    /** Until `leaveCopy` the applet and its parameters are a copy of the live ones on another virtual board, which may
     *  be changed. Not on a board of the system. */
    void enterCopy();
    void leaveCopy();
    bool isCopy() const { return m_copy != nullptr; }
    /** False where the command wanted none; the three below may not be called then. */
    bool hasScratch() const { return m_scratch != nullptr; }
    /** The scratch board, in the state that the live applet has now. */
    ScratchBoard& scratch();
    /** The scratch board with the live design's answers, and the values after the start. */
    ScratchBoard& scratchAtDefaults();
    /** The scratch board as the virtual board starts; the live applet is not looked at. */
    ScratchBoard& bareScratch();
    /** Names of what a read of the live applet does not measure: offline, all that comes from a board. It asks the
     *  scratch board at the first time, so it has to be called before the scratch board is brought to a state. */
    const std::set<std::string>& notMeasured();
    /** Reads from the live applet, and marks what is not measured. */
    ReadResult read(const Target& target);
    /** What of the scratch board's state was assumed, when it was last asked for. */
    const Words& assumed() const { return m_assumed; }
    /** Measured values that were, which no other answer depends on. */
    const Words& assumedMeasurements() const { return m_assumedMeasurements; }

    /** How the answers came about, in words, since they were last taken. */
    Words takeNotes();

    /** From now on the live virtual board logs its accesses, those for a start state left out. */
    void startTrace();
    /** What was logged since it was last taken. */
    Words takeAccesses();
    /** All that was taken. */
    const Words& accesses() const { return m_accesses; }

private:
    nlohmann::json withoutTrace(const std::function<nlohmann::json()>& read);
    ScratchBoard& scratchFrom(const nlohmann::json& state);

    BoardOptions m_options;
    bool m_publishesDesign;
    std::unique_ptr<ScratchBoard> m_scratch; // null if not wanted
    std::shared_ptr<const applet_host::AppletHost> m_host;
    std::optional<Instance> m_instance;
    std::optional<ParameterList> m_parameters;
    Words m_assumed, m_assumedMeasurements;
    std::optional<std::set<std::string>> m_notMeasured; // asked for when it is first needed
    Words m_notes;
    std::unique_ptr<ScratchSession> m_copy; // null if not wanted
    nlohmann::json m_copyDesign;            // the answers of the live design
    bool m_isTraced = false;
    Words m_accesses;
};

} // namespace applet_tools

#endif
