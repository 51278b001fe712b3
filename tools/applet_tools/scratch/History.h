/** What a board was before each command, and the way back. */
#ifndef APPLET_TOOLS_SCRATCH_HISTORY_H
#define APPLET_TOOLS_SCRATCH_HISTORY_H

#include "applet_tools/scratch/BoardState.h"
#include "applet_tools/scratch/LiveSession.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace applet_tools {

/** What taking a step back came to. */
struct Undone {
    /** A setting that the step had changed, as it is now. */
    struct Setting {
        Target target;
        ReadResult now;
        /** A rate of the simulator that a load of a file has moved by one cycle of its clock. */
        bool isNextCycle = false;
    };
    struct DesignNumber {
        std::string name, before, after;
    };

    std::string line; /**< of the command that was undone */
    std::vector<Setting> settings;
    std::vector<DesignNumber> design; /**< what else has moved of the design, where no setting has */
    Words notAsBefore;                /**< names of what differs from the state before the step */
    Words otherLimits{}; /**< parameters whose published limits differ; only their own sets compute them */
};

class History {
public:
    explicit History(LiveSession& live) : m_live(live) {}

    /** To be called before a command, with its line, and after it. What it has changed becomes a step that can be
     *  undone. */
    void begin(const std::string& line);
    void end();

    bool hasSteps() const { return !m_steps.empty(); }
    /** Takes the last step back; nothing if there is none. */
    std::optional<Undone> undo();

private:
    /** What the setters make: values, access, and what they have written to the design. Measurements are left out,
     *  since they move by themselves. */
    struct Moment {
        json values;
        json design;        // none where it cannot be read, as offline
        json access;        // {NAME: BITS}
        json limits;        // {NAME: [MINIMUM, MAXIMUM, INCREMENT]}; null without
        std::string line{}; // the command that followed
    };

    Moment now();
    const std::set<std::string>& settable();
    Wanted wantedValues(const Moment& moment);
    void rewrite(const Wanted& wanted, bool withModes);
    bool isNextCycle(const std::string& name, const Moment& before, const Moment& wanted);
    Undone undoneOf(const Moment& before, const Moment& wanted);

    LiveSession& m_live;
    std::set<std::string> m_settable; // empty until asked for
    std::optional<Moment> m_begin;
    std::vector<Moment> m_steps; // the last one at the end
};

} // namespace applet_tools

#endif
