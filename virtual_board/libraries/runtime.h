/** Internal names of the functions that the runtime exports. */
#ifndef VIRTUAL_BOARD_LIBRARIES_RUNTIME_H
#define VIRTUAL_BOARD_LIBRARIES_RUNTIME_H

#include "vexo/grabber_runtime.h"

namespace vboard::runtime {

#define RUNTIME_ENTRY(name, type, function, answer) type function;
#include "virtual_board/tables/runtime_entries.def"
#undef RUNTIME_ENTRY

} // namespace vboard::runtime

#endif
