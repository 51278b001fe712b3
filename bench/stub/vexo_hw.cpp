// A board without registers.

#include "vexo/board_access.h"

#include <cstdint>

extern "C" __attribute__((visibility("default"))) int VexoRegisterRead(LOOMdevice*, int, std::uint64_t*) {
    return -1;
}

extern "C" __attribute__((visibility("default"))) int VexoRegisterWrite(LOOMdevice*, int, std::uint64_t) {
    return -1;
}
