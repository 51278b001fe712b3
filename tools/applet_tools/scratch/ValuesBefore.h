/** The values that assignments replace. */
#ifndef APPLET_TOOLS_SCRATCH_VALUESBEFORE_H
#define APPLET_TOOLS_SCRATCH_VALUESBEFORE_H

#include "applet_tools/base/words.h"
#include "applet_tools/scratch/LiveSession.h"

#include <string>
#include <utility>
#include <vector>

namespace applet_tools {

/** Values of the targets of assignments, to be set again if a later assignment is refused. Leaves out those that a
 *  read would change. */
class ValuesBefore {
public:
    /** Throws UsageError for a word that is not an assignment. */
    ValuesBefore(LiveSession& live, const Words& assignments);
    /** Sets them in the opposite order. */
    void restore();

private:
    LiveSession& m_live;
    std::vector<std::pair<std::string, Value>> m_values;
};

} // namespace applet_tools

#endif
