/* The program of libvexo.so that tries values on a virtual board of its own. Only the library starts it. */
#include "host/run_scratch_board.h"

#include <stdio.h>

int main(int count, char** arguments) {
    if (count == 3) return vexo_private_run_scratch_board(count, arguments);
    fputs("vexo-scratch is started by libvexo.so, to try values that a station may refuse\n", stderr);
    return 2;
}
