/** What the applet library calls of the board access library, libvexo_hw.so (linked). */
#ifndef VEXO_BOARD_ACCESS_H
#define VEXO_BOARD_ACCESS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** An opened board. Opaque; it belongs to the runtime. */
typedef struct LOOMdevice LOOMdevice;

/** Reads register `reg` of the board into `*value`. 0 on success, else a negative code and `*value`
 * untouched. */
int VexoRegisterRead(LOOMdevice* board, int reg, uint64_t* value);

/** Writes `value` to register `reg` of the board. 0 on success, else a negative code. */
int VexoRegisterWrite(LOOMdevice* board, int reg, uint64_t value);

#ifdef __cplusplus
}
#endif
#endif
