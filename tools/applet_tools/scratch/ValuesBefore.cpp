#include "applet_tools/scratch/ValuesBefore.h"

#include "applet_tools/applet/assignments.h"

#include "vexo/fg_errors.h"

namespace applet_tools {

ValuesBefore::ValuesBefore(LiveSession& live, const Words& assignments) : m_live(live) {
    for (const Assignment& assignment : parseAssignments(live.parameters(), assignments)) {
        if (!assignment.target.parameter->effectOfReading().empty()) continue;
        const ReadResult reading = readValue(live.instance(), assignment.target);
        if (reading.error == FG_OK) m_values.emplace_back(assignment.target.name(), reading.value);
    }
}

void ValuesBefore::restore() {
    for (auto before = m_values.rbegin(); before != m_values.rend(); ++before)
        writeValue(m_live.instance(), findTarget(m_live.parameters(), before->first), before->second);
}

} // namespace applet_tools
