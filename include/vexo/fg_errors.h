/** Result codes of the grabber API. 0 is success; every failure is negative. */
#ifndef VEXO_FG_ERRORS_H
#define VEXO_FG_ERRORS_H

enum FgResult {
    FG_OK = 0,
    /** A parser found no number for a key; also stored by Fg_AllocShading, as there is no shading. */
    FG_ERR_PARSER = -1,
    /** Not available: the runtime lacks the function or the inner handle; or a write to a read-only
       parameter. */
    FG_ERR_NOT_AVAILABLE = -12,
    /** The design could not be loaded, or the runtime's init failed without a code of its own. */
    FG_ERR_INIT = -100,
    /** The caller's buffer is too small, or an allocation in the parameter tree failed. */
    FG_ERR_BUFFER = -500,
    /** Invalid handle: null, or its first word does not point to a live object. */
    FG_ERR_INVALID_HANDLE = -2001,
    /** A library or function cannot be resolved; a source has no mapping; a direct design access failed. */
    FG_ERR_UNRESOLVED = -2031,
    /** Invalid argument: null value, unknown id, DMA index, name or index, string not owned, field out of
       bounds. */
    FG_ERR_INVALID_ARGUMENT = -2070,
    /** A value that is in its enumeration has no translation; a tree index without a tree. */
    FG_ERR_NO_TRANSLATION = -2075,
    /** Configuration or LUT file missing or of the wrong type. */
    FG_ERR_FILE_TYPE = -2076,
    /** Fg_freeParameterStringWithType was called with a tag other than FG_PARAM_ALLOCATED_STRING. */
    FG_ERR_STRING_TAG = -2078,
    /** Not supported: unknown Info code, every shading operation. */
    FG_ERR_NOT_SUPPORTED = -2130,
    /** Configuration file could not be loaded. */
    FG_ERR_LOAD_CONFIG = -5000,
    /** Configuration file could not be created; LUT file could not be read or created. */
    FG_ERR_SAVE_CONFIG = -5001,
    /** Value out of range, or not in the parameter's enumeration. */
    FG_ERR_OUT_OF_RANGE = -6000,
    /** A width-like value is not a multiple of 4 pixels. */
    FG_ERR_GRANULARITY = -7080
};

#endif
