/** The boundary to the host, which may be written in C: no exception crosses it. */
#ifndef VIRTUAL_BOARD_BOARD_GUARD_H
#define VIRTUAL_BOARD_BOARD_GUARD_H

#include "virtual_board/board/Mutex.h"
#include "virtual_board/virtual_board.h"

#include <exception>

namespace vboard {

/** The status of a lookup. */
inline int known(bool isKnown) { return isKnown ? VBOARD_OK : VBOARD_UNKNOWN; }

/** The result of the function, or `otherwise` if it throws because memory runs out. */
template <typename Result, typename Function>
Result guarded(Result otherwise, Function function) NO_THREAD_SAFETY_ANALYSIS { // the function's own apply
    try {
        return function();
    } catch (const std::exception&) {
        return otherwise;
    }
}

/** The same for a function without an answer. */
template <typename Function> void guarded(Function function) NO_THREAD_SAFETY_ANALYSIS {
    try {
        function();
    } catch (const std::exception&) { // there is no result to report it with
    }
}

} // namespace vboard

#endif
