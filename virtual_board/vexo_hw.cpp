// libvexo_hw.so: access to the board's registers.

#include "board.h"

#pragma GCC visibility push(default)

int VexoRegisterRead(LOOMdevice* board, int reg, uint64_t* value) {
    return board != nullptr ? board->readRegister(reg, value) : vboard::badHandle;
}

int VexoRegisterWrite(LOOMdevice* board, int reg, uint64_t value) {
    return board != nullptr ? board->writeRegister(reg, value) : vboard::badHandle;
}

#pragma GCC visibility pop
