// Access to registers, libvexo_hw.so.

#include "vexo/fg_errors.h"
#include "virtual_board/board/Board.h"

int VexoRegisterRead(LOOMdevice* board, int reg, uint64_t* value) {
    return board != nullptr ? board->readRegister(reg, value) : FG_ERR_INVALID_HANDLE;
}

int VexoRegisterWrite(LOOMdevice* board, int reg, uint64_t value) {
    return board != nullptr ? board->writeRegister(reg, value) : FG_ERR_INVALID_HANDLE;
}
