#include "applet_tools/scratch/ValuesBefore.h"

#include "applet_tools/applet/assignments.h"

#include "vexo/fg_errors.h"

#include <ranges>

namespace applet_tools {

ValuesBefore::ValuesBefore(LiveSession& live, const Words& assignments) : m_live(live) {
    for (const Assignment& assignment : parseAssignments(live.parameters(), assignments)) {
        if (!assignment.target.parameter->effectOfReading().empty()) continue;
        const ReadResult reading = readValue(live.instance(), assignment.target);
        if (reading.error == FG_OK) m_values.emplace_back(assignment.target.name(), reading.value);
    }
}

void ValuesBefore::restore() {
    for (const auto& [name, value] : m_values | std::views::reverse)
        writeValue(m_live.instance(), findTarget(m_live.parameters(), name), value);
}

} // namespace applet_tools
