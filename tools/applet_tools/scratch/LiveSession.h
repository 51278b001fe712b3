/** A live applet with a scratch board to try things on. */
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

/** The live applet and the scratch board, each made on first use. Members that bring the applet up throw the
 *  exceptions of Instance, those that use the scratch board those of ScratchBoard. */
class LiveSession {
public:
    /** A scratch board forks the process, so it must be requested here, before any library is loaded. */
    enum class Scratch {
        none,
        withoutDesign, /**< does not know the values of the live design, which publishes no parameters for it */
        wanted
    };
    ~LiveSession();
    LiveSession(const LiveSession&) = delete;
    LiveSession& operator=(const LiveSession&) = delete;
    /** `jobs` are the scratch board's jobs; `observe` makes the observer of a wait for its answers. */
    explicit LiveSession(const BoardOptions& options, Scratch scratch = Scratch::none,
                         std::span<const JobRow> jobs = {}, ObserveWork observe = {});

    /** The libraries; loading them opens no board. */
    const applet_host::AppletHost& host();
    /** On a virtual board, sets up the station file named by VBOARD_STATION, if any and if the options say so. */
    Instance& instance();
    /** False before the first use, and after a failed restart. */
    bool isUp() const { return m_instance.has_value(); }
    /** Opens a fresh board and brings the applet up on it, with the loaded libraries. Invalidates existing
     *  parameters. */
    void restart();
    const ParameterList& parameters();
    /** Until `leaveCopy` the applet and its parameters are a copy of the live ones on another virtual board,
     *  which may be modified. It has the same camera, belt, scene and waves, and no time has passed on it. Not for a
     *  board of the system. */
    void enterCopy();
    void leaveCopy();
    bool isCopy() const { return m_copy != nullptr; }
    /** False if the command did not request one; the three functions below may not be called then. */
    bool hasScratch() const { return m_scratch != nullptr; }
    /** The scratch board in the present state of the live applet. */
    ScratchBoard& scratch();
    /** The scratch board with the live design's values and the start values of the parameters. */
    ScratchBoard& scratchAtDefaults();
    /** The scratch board in the virtual board's start state; does not read the live applet. */
    ScratchBoard& bareScratch();
    /** Names of parameters that the live applet cannot measure: offline, all that come from a board. The
     *  first call uses the scratch board, so it must come before the scratch board takes over a state. */
    const std::set<std::string>& notMeasured();
    /** Reads from the live applet, and marks values that are not measured. */
    ReadResult read(const Target& target);
    /** Names of the state that the last scratch board assumed. */
    const Words& assumed() const { return m_assumed; }
    /** The same for measured values; no other answer depends on them. */
    const Words& assumedMeasurements() const { return m_assumedMeasurements; }

    /** Takes the notes on how the answers were found, since the last call. */
    Words takeNotes();

    /** Until `stopTrace` the live virtual board logs its accesses, except those of a start state. */
    void startTrace();
    /** The accesses since the last call, or since the start. */
    Words takeAccesses();
    bool isTraced() const { return m_isTraced; }
    /** Ends the log; returns all accesses since the start. */
    Words stopTrace();

private:
    nlohmann::json withoutTrace(const std::function<nlohmann::json()>& read);
    ScratchBoard& scratchFrom(const nlohmann::json& state);

    BoardOptions m_options;
    bool m_publishesDesign;
    std::unique_ptr<ScratchBoard> m_scratch; // null if not requested
    std::shared_ptr<const applet_host::AppletHost> m_host;
    std::optional<Instance> m_instance;
    std::optional<ParameterList> m_parameters;
    Words m_assumed, m_assumedMeasurements;
    std::optional<std::set<std::string>> m_notMeasured; // set on first use
    Words m_notes;
    std::unique_ptr<ScratchSession> m_copy; // null if not requested
    nlohmann::json m_copyDesign;            // the values of the live design
    bool m_isTraced = false;
    Words m_accesses;
};

/** A copy of the live applet during its life, if wanted. */
class CopyInUse {
public:
    CopyInUse(LiveSession& live, bool isWanted) : m_live(isWanted ? &live : nullptr) {
        if (isWanted) live.enterCopy();
    }
    ~CopyInUse() {
        if (m_live != nullptr) m_live->leaveCopy();
    }
    CopyInUse(const CopyInUse&) = delete;
    CopyInUse& operator=(const CopyInUse&) = delete;

private:
    LiveSession* m_live;
};

} // namespace applet_tools

#endif
