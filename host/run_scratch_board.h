/** Internal interface between libvexo.so and its program vexo-scratch; not for hosts. */
#ifndef HOST_RUN_SCRATCH_BOARD_H
#define HOST_RUN_SCRATCH_BOARD_H

#ifdef __cplusplus
extern "C" {
#endif

/** The work of the program, with its arguments. Returns its exit code. */
__attribute__((visibility("default"))) int vexo_private_run_scratch_board(int count, char** arguments);

#ifdef __cplusplus
}
#endif

#endif
