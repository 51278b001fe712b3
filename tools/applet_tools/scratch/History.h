/** What a board was before each command, and the way back. */
#ifndef APPLET_TOOLS_SCRATCH_HISTORY_H
#define APPLET_TOOLS_SCRATCH_HISTORY_H

#include "applet_tools/scratch/BoardState.h"
#include "applet_tools/scratch/Context.h"
#include "appletctl/base/output.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace appletctl {

class History {
public:
    explicit History(Context& context) : m_context(context) {}

    /** To be called before a command, with its line, and after it. What it has changed becomes a step that can be
     *  undone. */
    void begin(const std::string& line);
    void end();

    /** Takes the last step back. */
    Report undo();

private:
    /** What the setters make: values, access, and what they have written to the design. Measurements are left out,
     *  since they move by themselves. */
    struct Moment {
        json values;
        json design;        // none where it cannot be read, as offline
        json access;        // {NAME: BITS}
        std::string line{}; // the command that followed
    };

    Moment now();
    const std::set<std::string>& settable();
    Wanted wantedValues(const Moment& moment);
    void rewrite(const Wanted& wanted, bool withModes);
    bool isNextCycle(const std::string& name, const Moment& before, const Moment& wanted);
    Report reportOf(const Moment& before, const Moment& wanted);

    Context& m_context;
    std::set<std::string> m_settable; // empty until asked for
    std::optional<Moment> m_begin;
    std::vector<Moment> m_steps; // the last one at the end
};

} // namespace appletctl

#endif
