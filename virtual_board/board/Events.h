/** The events that were raised on a board and not queried yet. */
#ifndef VIRTUAL_BOARD_BOARD_EVENTS_H
#define VIRTUAL_BOARD_BOARD_EVENTS_H

#include "virtual_board/board/Design.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace vboard {

/** The caller holds the board's mutex. */
class Events {
public:
    void reset() { m_raised.clear(); }
    void raise(const char* name, std::uint64_t times = 1) {
        m_raised[name] += static_cast<std::int64_t>(times);
    }
    /** How often the events of a mask were raised since the last query. */
    std::int64_t take(const Design& design, std::uint64_t mask);

private:
    std::map<std::string, std::int64_t, std::less<>> m_raised;
};

} // namespace vboard

#endif
