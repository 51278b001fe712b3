#include "virtual_board/board/Events.h"

namespace vboard {

std::int64_t Events::take(const Design& design, std::uint64_t mask) {
    std::int64_t times = 0;
    for (int index = 0; index < 64; ++index) {
        const TslEvent* event = design.event(index);
        if (event == nullptr) break;
        const auto raised = m_raised.find(event->name);
        if ((mask >> index & 1) == 0 || raised == m_raised.end()) continue;
        times += raised->second;
        m_raised.erase(raised);
    }
    return times;
}

} // namespace vboard
