/*
 * A host in C: loads the libraries named on the command line (virtual board, then the applet), brings one
 * handle up, sets, reads, is refused, frees. Sees nothing of the project but its C headers.
 */
#include "vexo/board_access.h"
#include "vexo/design_loader.h"
#include "vexo/fg_api.h"
#include "vexo/fg_errors.h"
#include "vexo/fg_parameters.h"
#include "vexo/grabber_runtime.h"
#include "vexo/logging_dispatcher.h"
#include "vexo/register_info.h"
#include "virtual_board/virtual_board.h"

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

static int failures = 0;

static void check(int holds, const char* text) {
    if (holds) return;
    fprintf(stderr, "c_host: %s\n", text);
    ++failures;
}

/* Stores the address of a function in a pointer to it. */
static int bind(void* library, const char* name, void* pointer, size_t size) {
    void* function = dlsym(library, name);
    if (function == NULL) {
        fprintf(stderr, "c_host: no function %s\n", name);
        ++failures;
        return 0;
    }
    memcpy(pointer, &function, size);
    return 1;
}

typedef LOOMdevice* OpenBoard(void);
typedef void CloseBoard(LOOMdevice* board);
typedef int PeekInt(LOOMdevice* board, const char* name, int64_t* value);
typedef void* StdEntry(LOOMdevice* device, int* error, int flags);
typedef int SetParameter(Fg_Struct* fg, int id, const void* value, int dma, FgParamTypes type);
typedef int GetParameter(Fg_Struct* fg, int id, void* value, int dma, FgParamTypes type);
typedef int OfHandle(Fg_Struct* fg);
typedef RegisterInfo* ParameterInfo(Fg_Struct* fg, int index);

static void session(void* board, void* applet) {
    OpenBoard* openBoard;
    CloseBoard* closeBoard;
    PeekInt* peek;
    StdEntry* stdEntry;
    SetParameter* set;
    GetParameter* get;
    ParameterInfo* info;
    OfHandle *freeGrabber, *lastError;
    if (!bind(board, "vboard_open", &openBoard, sizeof openBoard) ||
        !bind(board, "vboard_close", &closeBoard, sizeof closeBoard) ||
        !bind(board, "vboard_peek_int", &peek, sizeof peek) ||
        !bind(applet, "Std_entry", &stdEntry, sizeof stdEntry) ||
        !bind(applet, "Fg_setParameterWithType", &set, sizeof set) ||
        !bind(applet, "Fg_getParameterWithType", &get, sizeof get) ||
        !bind(applet, "Fg_getParameterInfo", &info, sizeof info) ||
        !bind(applet, "Fg_FreeGrabber", &freeGrabber, sizeof freeGrabber) ||
        !bind(applet, "Fg_getLastErrorNumber", &lastError, sizeof lastError))
        return;

    LOOMdevice* device = openBoard();
    int error = 1;
    void* word = stdEntry(device, &error, 0); /* the handle: its first word is the object */
    Fg_Struct* fg = (Fg_Struct*)&word;
    check(word != NULL && error == FG_OK, "no object");

    uint32_t width = 2048;
    int64_t written = 0;
    check(set(fg, FG_WIDTH, &width, 0, FG_PARAM_UINT32) == FG_OK, "width refused");
    check(peek(device, "Device1_Process0_Buffer_0_XLength", &written) == VBOARD_OK && written == 2048,
          "the width did not reach the board");
    width = 2047;
    check(set(fg, FG_WIDTH, &width, 0, FG_PARAM_UINT32) == FG_ERR_GRANULARITY, "odd width taken");
    check(lastError(fg) == FG_ERR_GRANULARITY, "refusal not stored");
    check(get(fg, FG_WIDTH, &width, 0, FG_PARAM_UINT32) == FG_OK && width == 2048, "width not kept");
    double exposure = 0;
    check(get(fg, FG_LINEEXPOSURE, &exposure, 0, FG_PARAM_DOUBLE) == FG_OK && exposure == 19.0, "exposure");
    const RegisterInfo* root = info(fg, 0);
    check(root != NULL && root->kind == REGISTER_KIND_GROUP && root->structSize == REGISTER_INFO_SIZE,
          "tree");

    check(freeGrabber(fg) == FG_OK && word == NULL, "not freed");
    check(freeGrabber(fg) == FG_ERR_INVALID_HANDLE, "freed twice");
    closeBoard(device);
}

int main(int count, char** files) {
    void* libraries[4] = {NULL, NULL, NULL, NULL};
    if (count != 5) {
        fprintf(stderr, "usage: c_host VEXO_HW TSLRT GRABCORE5 APPLET\n");
        return 2;
    }
    for (int i = 0; i < 4; ++i) {
        libraries[i] = dlopen(files[i + 1], RTLD_NOW | RTLD_LOCAL);
        if (libraries[i] == NULL) {
            fprintf(stderr, "c_host: %s\n", dlerror());
            return 1;
        }
    }
    session(libraries[0], libraries[3]);
    for (int i = 4; i-- > 0;)
        dlclose(libraries[i]);
    return failures != 0;
}
