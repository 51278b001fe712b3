/** The state of a board before each command, for undo. */
#ifndef APPLET_TOOLS_SCRATCH_HISTORY_H
#define APPLET_TOOLS_SCRATCH_HISTORY_H

#include "applet_tools/scratch/BoardState.h"
#include "applet_tools/scratch/LiveSession.h"

#include <deque>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace applet_tools {

/** The result of undoing a step. */
struct Undone {
    /** A setting that the step had changed, with its restored value. */
    struct Setting {
        Target target;
        ReadResult now;
        /** A simulator rate that a load of a file has moved by one clock cycle. */
        bool isNextCycle = false;
    };
    struct DesignNumber {
        std::string name, before, after;
    };

    std::string line; /**< of the command that was undone */
    std::vector<Setting> settings;
    std::vector<DesignNumber> design; /**< other changes of the design, without a changed setting */
    Words notAsBefore;                /**< names of values that still differ from the state before the step */
    Words otherLimits{}; /**< parameters with different published limits; only their own sets compute them */
};

class History {
public:
    explicit History(LiveSession& live) : m_live(live) {}

    /** Call before a command, with its line, and after it. The changes in between become a step that can be
     *  undone; the latest fifty are kept. */
    void begin(const std::string& line);
    void end();

    bool hasSteps() const { return !m_steps.empty(); }
    /** Undoes the last step; empty if there is none. */
    std::optional<Undone> undo();

private:
    /** Results of the setters: values, access, and the design's values. Measurements are left out,
     *  since they change by themselves. */
    struct Moment {
        json values;
        json design;         // null if it cannot be read, as offline
        json access;         // {NAME: BITS}
        json limits;         // {NAME: [MINIMUM, MAXIMUM, INCREMENT]}; null without limits
        std::string line{};  // the command that followed
        Words notRestored{}; // names of parameters that it set: those that write a file, and offline
                             // those that only a board measures
    };

    Moment now();
    void forgetContinuedCount();
    const std::set<std::string>& settable();
    Wanted wantedValues(const Moment& moment);
    void rewrite(const Wanted& wanted, bool withModes);
    void restoreAccess(const Wanted& wanted, const Moment& before, const json& access);
    Undone undoneOf(const Moment& before, const Moment& wanted);

    LiveSession& m_live;
    std::set<std::string> m_settable; // empty until asked for
    std::optional<Moment> m_begin;
    std::deque<Moment> m_steps; // the latest at the end
};

} // namespace applet_tools

#endif
