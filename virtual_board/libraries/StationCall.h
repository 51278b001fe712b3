/** Access of the control functions to the station of a board. */
#ifndef VIRTUAL_BOARD_STATION_CALL_H
#define VIRTUAL_BOARD_STATION_CALL_H

#include "virtual_board/board/Board.h"
#include "virtual_board/board/BoardStation.h"
#include "virtual_board/board/Guard.h"

namespace vboard {

/** Calls the function with the station of a board and returns its result; handles a null board. */
template <typename Function> int perform(LOOMdevice* board, Function function) {
    if (board == nullptr) return VBOARD_UNKNOWN;
    return guarded(int{VBOARD_NO_MEMORY}, [&]() -> int {
        const StationLock lock(*board);
        return function(board->station().station());
    });
}

} // namespace vboard

#endif
