/**
 * The functions of the design loader, libtslrt.so (linked), that the applet library calls.
 *
 * All pointers that the loader returns belong to the loader and are valid while the design is loaded.
 */
#ifndef VEXO_DESIGN_LOADER_H
#define VEXO_DESIGN_LOADER_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** A loaded design. Opaque. */
typedef struct fpga_design fpga_design;

/** An event that the design can raise. Its mask is 1 shifted by its position in the design's list. */
typedef struct TslEvent {
    uint32_t publication; /**< 1: publish the event's own name */
    const char* name;     /**< the design's name of the event */
} TslEvent;

/** Loads a design from `size` bytes at `image`. The image must stay in place while the design is loaded.
 *  Returns the design, or null. The last argument is always 1 here. */
fpga_design* TslLoadDesignFromBuffer(const void* image, size_t size, int flags);

/** Loads a design of the given type code from a file that the loader finds by `name`. Null on failure. */
fpga_design* TslLoadTslFileWithType(const char* name, int type, int flags);

/** Unloads a design. 0 on success. */
int TslUnloadTslFile(fpga_design* design);

/** Number of hardware registers of the design. */
int TslGetNrOfRegister(fpga_design* design);

/** Name of register `index`, from 1 to the number of registers; null if out of range. */
const char* TslGetRegisterName(fpga_design* design, int index);

/** Id of the register with that name, or 0 if there is none. */
int TslGetRegisterByName(fpga_design* design, const char* name);

/** Width of register `reg` in bits, 1 to 64. */
int TslGetRegisterBitRange(fpga_design* design, int reg);

/** 0: register `reg` is read-only; otherwise it is writable. */
int TslGetRegisterDirection(fpga_design* design, int reg);

/** Event number `index`, from 0; null past the last. */
const TslEvent* TslGetEvent(fpga_design* design, int index);

#ifdef __cplusplus
}
#endif
#endif
