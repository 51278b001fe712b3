// A design loader with an empty design.

#include "vexo/design_loader.h"

#include <cstddef>

#define ENTRY extern "C" __attribute__((visibility("default")))

ENTRY fpga_design* TslLoadDesignFromBuffer(const void*, std::size_t, int) {
    static char design;
    return reinterpret_cast<fpga_design*>(&design);
}

ENTRY fpga_design* TslLoadTslFileWithType(const char*, int, int) { return nullptr; }

ENTRY int TslUnloadTslFile(fpga_design*) { return 0; }

ENTRY int TslGetNrOfRegister(fpga_design*) { return 0; }

ENTRY const char* TslGetRegisterName(fpga_design*, int) { return nullptr; }

ENTRY int TslGetRegisterByName(fpga_design*, const char*) { return 0; }

ENTRY int TslGetRegisterBitRange(fpga_design*, int) { return 32; }

ENTRY int TslGetRegisterDirection(fpga_design*, int) { return 0; }

ENTRY const TslEvent* TslGetEvent(fpga_design*, int) { return nullptr; }
