/*
 * One session of a host that uses only the project's C headers and is linked with the libraries: brings
 * one handle up, sets, reads, has a set refused, frees. C11 and C++20.
 */
#ifndef TESTS_LIBRARY_BINARY_HOST_SESSION_H
#define TESTS_LIBRARY_BINARY_HOST_SESSION_H

#include "vexo/board_access.h"
#include "vexo/design_loader.h"
#include "vexo/fg_api.h"
#include "vexo/fg_errors.h"
#include "vexo/fg_parameters.h"
#include "vexo/grabber_runtime.h"
#include "vexo/logging_dispatcher.h"
#include "vexo/register_info.h"
#include "virtual_board/virtual_board.h"

#include <stdio.h>

static int failures = 0;

static inline void check(int holds, const char* text) {
    if (holds) return;
    fprintf(stderr, "host: %s\n", text);
    ++failures;
}

static inline int hostSession(void) {
    LOOMdevice* device = vboard_open();
    int error = 1;
    void* word = Std_entry(device, &error, 0); /* the handle: its first word is the object */
    Fg_Struct* fg = (Fg_Struct*)&word;
    check(word != NULL && error == FG_OK, "no object");

    uint32_t width = 2048;
    int64_t written = 0;
    check(Fg_setParameterWithType(fg, FG_WIDTH, &width, 0, FG_PARAM_UINT32) == FG_OK, "width refused");
    check(vboard_peek_int(device, "Device1_Process0_Buffer_0_XLength", &written) == VBOARD_OK &&
              written == 2048,
          "the width did not reach the board");
    width = 2047;
    check(Fg_setParameterWithType(fg, FG_WIDTH, &width, 0, FG_PARAM_UINT32) == FG_ERR_GRANULARITY,
          "odd width");
    check(Fg_getLastErrorNumber(fg) == FG_ERR_GRANULARITY, "refusal not stored");
    check(Fg_getParameterWithType(fg, FG_WIDTH, &width, 0, FG_PARAM_UINT32) == FG_OK && width == 2048,
          "width not kept");
    double exposure = 0;
    check(Fg_getParameterWithType(fg, FG_LINEEXPOSURE, &exposure, 0, FG_PARAM_DOUBLE) == FG_OK &&
              exposure == 19.0,
          "exposure");
    const RegisterInfo* root = Fg_getParameterInfo(fg, 0);
    check(root != NULL && root->kind == REGISTER_KIND_GROUP && root->structSize == REGISTER_INFO_SIZE,
          "tree");

    check(Fg_FreeGrabber(fg) == FG_OK && word == NULL, "not freed");
    check(Fg_FreeGrabber(fg) == FG_ERR_INVALID_HANDLE, "freed twice");
    vboard_close(device);
    return failures;
}

#endif
