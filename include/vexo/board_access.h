/** The functions of the board access library, libvexo_hw.so (linked), that the applet library calls. */
#ifndef VEXO_BOARD_ACCESS_H
#define VEXO_BOARD_ACCESS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** An opened board. Opaque; it belongs to the runtime. */
typedef struct LOOMdevice LOOMdevice;

/** Reads register `reg` of the board into `*value`. Returns 0 on success, otherwise a negative code with
 * `*value` unchanged. */
int VexoRegisterRead(LOOMdevice* board, int reg, uint64_t* value);

/** Writes `value` to register `reg` of the board. Returns 0 on success, otherwise a negative code. */
int VexoRegisterWrite(LOOMdevice* board, int reg, uint64_t value);

#ifdef __cplusplus
}
#endif
#endif
