/**
 * The functions that libGrab_TwinLaneLineColor.so exports.
 *
 * They have the same names as the functions of the grabber runtime, which forwards the calls for a handle of
 * this applet to them. `fg` is the caller's handle: its first word points to the object from Std_entry.
 *
 * Unless a function says otherwise:
 *  - an invalid handle (null, or not pointing to an object of this library) gives FG_ERR_INVALID_HANDLE;
 *  - the result, 0 or the error code, is also stored, to be read with Fg_getLastErrorNumber;
 *  - Fg_setParameterWithType and Fg_getParameterWithType hold the object's lock for the whole call, so that
 *    accesses from several threads are serialized; no other function takes it;
 *  - if memory runs out, the function throws std::bad_alloc or returns one of its codes. Nothing is leaked
 *    then, and later calls work.
 */
#ifndef VEXO_FG_API_H
#define VEXO_FG_API_H

#include "vexo/board_access.h"
#include "vexo/design_loader.h"
#include "vexo/fg_errors.h"
#include "vexo/fg_parameters.h"
#include "vexo/register_info.h"

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** A grabber handle. This library uses only its first word, a pointer to the applet's object. */
typedef struct Fg_Struct_s Fg_Struct;

/** Opaque; this applet has no shading hardware. */
typedef struct ShadingMaster ShadingMaster;

/** Type of the value that the `value` pointer of a typed access points to. */
typedef int FgParamTypes;
enum {
    FG_PARAM_INT32 = 1,
    FG_PARAM_UINT32 = 2,
    FG_PARAM_INT64 = 3,
    FG_PARAM_UINT64 = 4,
    FG_PARAM_DOUBLE = 5,
    /** A character buffer of the caller; its size is not passed. */
    FG_PARAM_TEXT = 6,
    /** On a get: the address of a pointer that receives a text allocated by the library. */
    FG_PARAM_ALLOCATED_STRING = 22,
    /** A FieldParameterAccess record. */
    FG_PARAM_FIELD_ACCESS = 4096,
    /** A FieldParameterInt_s record. */
    FG_PARAM_FIELD_INT = 4098
};

/** One element of an integer array parameter. */
typedef struct FieldParameterInt_s {
    uint32_t value;
    uint32_t index; /**< element, from 0 */
} FieldParameterInt_s;

/** One element of a floating point array parameter. */
typedef struct FieldParameterDouble_s {
    double value;
    uint32_t index; /**< element, from 0 */
} FieldParameterDouble_s;

/**
 * A run of elements of an array parameter.
 *
 * A get fills the caller's elements; a 64-bit element receives two elements of the array. Other tags fill
 * nothing. A set takes 32-bit elements and tests only the first against the parameter's limits; with
 * FG_PARAM_FIELD_INT it writes to the design only, and a get does not return it. A null array is refused
 * unless the count is 0.
 */
typedef struct FieldParameterAccess {
    FgParamTypes vtype; /**< width of the caller's elements: tags 1 and 2 are 32 bits, 3 to 5 are 64 bits */
    uint32_t index;     /**< first element, from 0 */
    uint32_t count;     /**< number of elements */
    void* values;       /**< the caller's array of at least `count` elements */
} FieldParameterAccess;

/** An event as returned by FG_INFO_EVENT_RECORD. The texts belong to the library. */
typedef struct FgEventRecord {
    const char* name;
    int32_t value;
    const char* description; /**< stored only for a record version of 1 or more */
} FgEventRecord;

/**
 * The queries of Info. "Gives" refers to the return value; "stores" to the memory that an argument points to.
 * Nothing is stored through a null pointer unless said otherwise.
 */
enum FgInfoCode {
    /* Constants that only the runtime interprets: each gives a number. */
    FG_INFO_848 = 848,
    FG_INFO_1040 = 1040,
    FG_INFO_1045 = 1045,
    FG_INFO_1792 = 1792,
    FG_INFO_1872 = 1872,
    FG_INFO_1888 = 1888,
    FG_INFO_2064 = 2064,
    FG_INFO_2160 = 2160,
    FG_INFO_2192 = 2192,
    FG_INFO_2560 = 2560,
    FG_INFO_2816 = 2816,
    FG_INFO_3072 = 3072,
    FG_INFO_3328 = 3328,
    FG_INFO_2304 = 2304, /**< stores 0 as a 32-bit word in `in` */

    FG_INFO_ICON = 1041, /**< stores the size of a PNG (64 bits) in `in`, its address in `out` */
    FG_INFO_DESIGN_IMAGE =
        1042, /**< stores the size of the design image (64 bits) in `in`, its address in `out` */
    FG_INFO_PRODUCT_GUID = 1043, /**< this and the next: store the address of a text in `out` */
    FG_INFO_VERSION_GUID = 1044,
    FG_INFO_DESCRIPTION = 4096,
    FG_INFO_CATEGORY = 4112,
    FG_INFO_TAGS = 4128,
    FG_INFO_NAME = 4176,
    FG_INFO_VERSION = 4192,
    FG_INFO_BUILD = 4208,

    FG_INFO_VERSION_WORD = 2048, /**< gives version << 16 | revision */
    FG_INFO_DESIGN_TYPE = 2176,  /**< gives the design's type code */
    FG_INFO_DEVICE = 4144,       /**< stores the board of the last successful init of the process in `in` */
    FG_INFO_DESIGN = 4160,       /**< stores the design of that init in `in` */
    FG_INFO_ENUM_VALUE =
        4352, /**< gives the value of the constant named by the text `in`; it may be negative */

    FG_INFO_PROCESSES = 4608, /**< gives the number of processes */
    /* About process `arg1`; FG_ERR_INVALID_ARGUMENT for any process other than 0. */
    FG_INFO_PROCESS_4624 = 4624,
    FG_INFO_PROCESS_4640 = 4640,
    FG_INFO_PROCESS_4656 = 4656, /**< `arg2` must be 0 as well */
    FG_INFO_PROCESS_4672 = 4672, /**< `arg2` must be 0 as well */
    FG_INFO_PROCESS_4688 = 4688,
    FG_INFO_PROCESS_4704 = 4704,

    /* An object without a board and a runtime; null pointers give FG_ERR_INVALID_ARGUMENT. */
    FG_INFO_CREATE_OFFLINE = 4864,  /**< creates one and stores it in `out`, for the first word of a handle */
    FG_INFO_OFFLINE_TREE = 4880,    /**< stores the root record of tree `arg1` of the object `in` in `out` */
    FG_INFO_DESTROY_OFFLINE = 4896, /**< destroys the object `in` */

    /**
     * Fills the FgEventRecord `out` for the event with mask `arg1`. `arg2` is the record's version: 0 has no
     * description, 1 has one, 2 takes the mask from the 64-bit word at `in` unless that is null.
     * FG_ERR_INVALID_ARGUMENT: `out` is null, or no object of the process has listed one of the applet's
     * events under that mask.
     */
    FG_INFO_EVENT_RECORD = 5120
};

/** Direct register access: register n has the id FG_DIRECT_REGISTER_BASE + n, if VEXO_ENABLE_DRA is on. */
#define FG_DIRECT_REGISTER_BASE 1000000
/** Direct design parameter access: parameter n has the id FG_DIRECT_PARAMETER_BASE + n. */
#define FG_DIRECT_PARAMETER_BASE 2000000

/**
 * Creates the object of one opened board, binds the runtime, loads the design and brings the parameters up.
 *
 * @param device  the runtime's board, kept as a handle only
 * @param error   receives 0 or the failure's code; may be null. FG_ERR_UNRESOLVED: the runtime's library or
 *                its init function is not found; FG_ERR_INIT: the design cannot be loaded (the object is then
 *                leaked), or the runtime's init failed without a reason; otherwise that reason
 * @param flags   passed to the runtime. If bit 0 is set, the hardware is left unchanged: no default is set
 * @return the object, to be stored in the first word of the caller's handle; null on failure. Fg_FreeGrabber
 *         destroys it. Takes no lock.
 */
void* Std_entry(LOOMdevice* device, int* error, int flags);

/**
 * Answers a query about the applet. Needs no object.
 *
 * @param code  a FgInfoCode, which documents the arguments and the result of each query
 * @return the answer, or 0 if the answer is stored; FG_ERR_NOT_SUPPORTED for an unknown code,
 *         FG_ERR_INVALID_ARGUMENT for bad arguments. Stores no error. Takes no lock and is thread-safe.
 */
int32_t Info(int code, int arg1, int arg2, void* in, void* out);

/**
 * Sets a parameter.
 *
 * @param id     an id of fg_parameters.h; FG_DIRECT_REGISTER_BASE or FG_DIRECT_PARAMETER_BASE plus a number
 * @param value  the value in the parameter's own width, regardless of `type`; for array parameters the record
 *               that `type` names
 * @param dma    0, the only DMA channel
 * @return 0; FG_ERR_INVALID_ARGUMENT: null value, unknown id or DMA channel; FG_ERR_NOT_AVAILABLE: read-only;
 *         FG_ERR_OUT_OF_RANGE or FG_ERR_GRANULARITY: refused by the parameter; otherwise the runtime's code.
 */
int Fg_setParameterWithType(Fg_Struct* fg, int id, const void* value, int dma, FgParamTypes type);

/**
 * Reads a parameter.
 *
 * @param id     as for Fg_setParameterWithType
 * @param value  receives the value in the parameter's own width, regardless of `type` (only texts and array
 *               parameters use it). With FG_PARAM_INT64 or FG_PARAM_UINT64 the 64-bit word here is cleared
 *               first, even if the call then fails. A text read with FG_PARAM_ALLOCATED_STRING belongs to the
 *               object until Fg_freeParameterStringWithType releases it or the object is destroyed
 * @param dma    0, the only DMA channel; FG_NR_OF_PROCESSES takes any
 * @return 0; FG_ERR_INVALID_ARGUMENT: null value, unknown id or DMA channel; otherwise the runtime's code.
 */
int Fg_getParameterWithType(Fg_Struct* fg, int id, void* value, int dma, FgParamTypes type);

/**
 * Releases a text that a get with FG_PARAM_ALLOCATED_STRING returned.
 *
 * @param value  the text itself
 * @return 0; FG_ERR_INVALID_ARGUMENT: not a text of this object; FG_ERR_STRING_TAG: a tag other than
 *         FG_PARAM_ALLOCATED_STRING. Only the refusal of a text and the result for a design parameter are
 *         stored. Throws an `int` for an unknown DMA channel. May run concurrently with a get in
 *         another thread.
 */
int Fg_freeParameterStringWithType(Fg_Struct* fg, int id, void* value, int dma, FgParamTypes type);

/** Number of parameter names, including direct ones. Nothing is stored. */
int Fg_getNrOfParameter(Fg_Struct* fg);

/** Name of parameter `index`, from 0; owned by the object. Null for an invalid handle or an unknown index. */
const char* Fg_getParameterName(Fg_Struct* fg, int index);

/** Id of parameter `index`, or FG_ERR_INVALID_ARGUMENT, also for the names of direct design parameters. */
int Fg_getParameterId(Fg_Struct* fg, int index);

/** Id of the parameter with that name; case-sensitive. FG_ERR_INVALID_ARGUMENT if null, empty or unknown. */
int Fg_getParameterIdByName(Fg_Struct* fg, const char* name);

/**
 * Root record of parameter tree `index`; 0 is the only one. Null for another index or an invalid handle, and
 * if the handle has no runtime (use FG_INFO_OFFLINE_TREE then). Records belong to the object and are valid
 * until it is destroyed. Nothing is stored.
 */
RegisterInfo* Fg_getParameterInfo(Fg_Struct* fg, int index);

/**
 * Describes parameter tree `index` as an XML document for readers of GenApi 1.0, with the current limits and
 * access. It contains no values, 64-bit integers, arrays or DRA_ registers. Also works for an object without
 * a runtime. Every call builds the document, even one that only asks for its size. A limit that changes
 * between the size query and the copy may need another digit, so be prepared to retry.
 *
 * @param buffer  receives the document and its terminating zero; null to query the size only
 * @param size    in: bytes at `buffer`; out, on success: bytes that the document needs, including the zero.
 *                Unchanged on failure
 * @return 0; FG_ERR_INVALID_ARGUMENT: `size` is null; FG_ERR_BUFFER: document and zero do not fit; nothing
 *         was copied; FG_ERR_NO_TRANSLATION: no such tree.
 */
int Fg_getParameterInfoXML(Fg_Struct* fg, int index, char* buffer, unsigned long* size);

/** Mask of the applet's or design's event with that name; 0 for an invalid handle or an unknown name. */
uint64_t Fg_getEventMask(Fg_Struct* fg, const char* name);

/** Name of the event with exactly that mask, owned by the object; null if there is none. */
const char* Fg_getEventName(Fg_Struct* fg, uint64_t mask);

/**
 * Saves the state of the parameters to a text file; its name must contain ".mcf". 0, or FG_ERR_SAVE_CONFIG
 * for another name, null, or a file that cannot be created. If a getter fails, only its own line is missing;
 * a full disk is only reported in the log.
 *
 * Numbers are written with the decimal separator of the process locale, which is first set to "English" where
 * a locale of that name exists. Takes no lock: no other thread may use the handle's parameters meanwhile.
 */
int Fg_saveConfig(Fg_Struct* fg, const char* file);

/**
 * Loads a file that Fg_saveConfig wrote for this applet. The same applies to locale and locks.
 *
 * 0 even if setters refused some of the values; to detect this, read them back. FG_ERR_LOAD_CONFIG if any key
 * is missing (all others are applied), or if the file belongs to another applet or has lines that end in a
 * carriage return (nothing is applied). FG_ERR_FILE_TYPE if the file does not exist or its name does not
 * contain ".mcf"; the last error is then FG_ERR_LOAD_CONFIG.
 */
int Fg_loadConfig(Fg_Struct* fg, const char* file);

/** Result of the last call on this handle that stored one. */
int Fg_getLastErrorNumber(Fg_Struct* fg);

/**
 * Frees the runtime's inner grabber, then destroys the object and clears the first word of `fg`.
 * Returns the runtime's result. No other call may be in progress on the handle.
 */
int Fg_FreeGrabber(Fg_Struct* fg);

/*
 * Forwarded to the runtime with its inner handle. The arguments are passed unchanged, and only the runtime
 * interprets them; their names are the usual ones. Returns the runtime's result; FG_ERR_NOT_AVAILABLE: the
 * runtime lacks the function or the inner handle. Stores the runtime's last error after a negative result,
 * otherwise 0.
 */
int Fg_getAppletId(Fg_Struct* fg, uintptr_t arg);
int Fg_AcquireEx(Fg_Struct* fg, int dma, intptr_t frames, int flags, void* memory);
int Fg_stopAcquireEx(Fg_Struct* fg, int dma, void* memory, int flags);
int64_t Fg_getStatusEx(Fg_Struct* fg, int what, intptr_t arg, int dma, void* memory);
int64_t Fg_getLastPicNumberEx(Fg_Struct* fg, int dma, void* memory);
int64_t Fg_getLastPicNumberBlockingEx(Fg_Struct* fg, intptr_t picture, int dma, int timeoutSeconds,
                                      void* memory);

/* This applet has no shading: Fg_AllocShading gives null and stores -1, all others FG_ERR_NOT_SUPPORTED. */
ShadingMaster* Fg_AllocShading(Fg_Struct* fg, int set, int dma);
int Fg_FreeShading(Fg_Struct* fg, ShadingMaster* shading);
int Shad_SetSubValueLine(Fg_Struct* fg, ShadingMaster* shading, int x, int channel, float value);
int Shad_SetMultValueLine(Fg_Struct* fg, ShadingMaster* shading, int x, int channel, float value);
int Shad_SetFixedPatternNoiseLine(Fg_Struct* fg, ShadingMaster* shading, int x, int channel, int on);
int Shad_GetMaxLine(Fg_Struct* fg, ShadingMaster* shading);
int Shad_GetAccess(Fg_Struct* fg, ShadingMaster* shading);
int Shad_FreeAccess(Fg_Struct* fg, ShadingMaster* shading);
int Shad_WriteActLine(Fg_Struct* fg, ShadingMaster* shading, int line);

/*
 * The library also exports mkstemps(char* pattern, int suffixLength), for systems where the C library lacks
 * it; <stdlib.h> declares it.
 */

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif
#endif
