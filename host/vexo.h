/**
 * The host library libvexo.so opens stations. A station is an applet that has been brought up on a board, with
 * its parameters, files, events and pictures. A program links libvexo.so alone; the library loads the applet
 * and the platform libraries.
 *
 *     vexo_station* station = NULL;
 *     if (vexo_open(NULL, &station) != VEXO_OK)                            // a virtual board
 *         return give_up(vexo_last_error());
 *     if (vexo_set_int(station, vexo_id(station, "FG_WIDTH"), 2048) != VEXO_OK)
 *         complain(vexo_last_error());                                     // why, and what would be accepted
 *     vexo_close(station);
 *
 * Results. Unless a function says otherwise it returns VEXO_OK (0) or a negative code: one of the applet's own
 * (FG_ERR_..., vexo/fg_errors.h), or a VEXO_ERR_... of this header for errors outside the applet. After a
 * failure, vexo_last_error() gives its message and vexo_last_details() a JSON document, for the calling
 * thread. A failed call leaves the caller's memory as it was, except where a function says otherwise, and
 * changes nothing on the board. Null pointers and arguments beyond their limits are VEXO_ERR_ARGUMENT. No
 * C++ exception leaves a function.
 *
 * Parameters are named by their id. vexo_id gives the id for a name, and an id stays the same as long as the
 * station is open. A negative id is the code of a failed vexo_id: every function returns it as its own result,
 * and the message of vexo_id remains the last error. So the result of vexo_id may be passed on unchecked:
 *
 *     code = vexo_set_int(station, vexo_id(station, "FG_WITH"), 2048);   // "... did you mean FG_WIDTH?"
 *
 * Texts are UTF-8. A returned `const char*` belongs to the library; the function's description says how long it
 * is valid. A returned `char*` belongs to the caller, who releases it with vexo_free.
 *
 * Threads. Any number of threads may use one station, and each may use several. Reads of numbers take no lock
 * but the applet's own. All other accesses to parameters, files, questions and the set-up of the simulation
 * hold the station's lock for the call, so a question (which takes some hundredths of a second) delays them,
 * but no read of a number. A read of a number while another thread is in vexo_load may see the value from
 * before or after it. Waits, renders and the clock take no lock of the station. vexo_close must be the last
 * call. Opening and closing are serialized for the process. vexo_open calls setenv; do not access the
 * environment from other threads during the call.
 *
 * A question (vexo_ask_..., and the advice in the message of a refusal) tries values on a scratch board in a
 * separate process, vexo-scratch, which is started with the first question of a station. The station's own
 * board is not accessed.
 */
#ifndef VEXO_VEXO_H
#define VEXO_VEXO_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** Codes of this library. All are below those of the applet. */
enum vexo_code {
    VEXO_OK = 0,
    VEXO_TIMEOUT = -20001,         /**< timed out */
    VEXO_ERR_ARGUMENT = -20002,    /**< a null pointer, or an argument beyond its limits */
    VEXO_ERR_NAME = -20003,        /**< no parameter, event, input or entry has that name, id or index */
    VEXO_ERR_VALUE = -20004,       /**< not a value of the kind, or a number that does not fit in the type */
    VEXO_ERR_KIND = -20005,        /**< the parameter has another kind of value than the function */
    VEXO_ERR_SPACE = -20006,       /**< the caller's memory is too small; the size that is needed is given */
    VEXO_ERR_LIBRARY = -20007,     /**< a library was not found or cannot be loaded */
    VEXO_ERR_UNAVAILABLE = -20008, /**< the applet did not come up, or an optional part was not built in */
    VEXO_ERR_NOT_VIRTUAL = -20009, /**< only a virtual board has that */
    VEXO_ERR_STATE = -20010,       /**< not possible now; the message says why */
    VEXO_ERR_GONE = -20011,   /**< the picture is not in the memory: overwritten, released, not yet arrived */
    VEXO_ERR_FILE = -20012,   /**< a file cannot be read or written, or is not what was expected */
    VEXO_ERR_MEMORY = -20013, /**< no memory is left */
    VEXO_ERR_FAILED = -20014  /**< any other failure; see the message */
};

/** An open station. */
typedef struct vexo_station vexo_station;

/* ---- library ---- */

/** Returns the version of the library, "1.1.0". Valid until the process ends. */
const char* vexo_version(void);

/** Describes a code of this header or of the applet: "-6000, value out of range". Never null. Valid until the
 *  next call of this function in the same thread. */
const char* vexo_code_text(int code);

/** Returns the code of the last failed call of this thread; VEXO_OK if none has failed. A success does not
 *  clear it. */
int vexo_last_code(void);

/** Returns the message for vexo_last_code(), without a line break at the end; never null. It names the request,
 *  the limit, what sets it, the nearest accepted value, or the nearest names. Valid until the next failed call
 *  of the same thread. */
const char* vexo_last_error(void);

/** Returns the details as a JSON object, never null. Members: "code", "symbol", "meaning", "message". For a
 *  refused value also "name", "requested" {"value", "symbol"}, "limit" {"minimum", "maximum", "step"} (for
 *  numbers), and, if the station gives advice, "nearest" {"value"}, "setBy" [{"limit", "parameter", "with",
 *  "becomes"}], "acceptedWith" ["FG_XOFFSET=0", ...]. For an unknown name "suggestions" ["FG_WIDTH", ...].
 *  Valid as long as the message. */
const char* vexo_last_details(void);

/** Releases a text that a function returned as `char*`. Does nothing for null. */
void vexo_free(char* text);

/* ---- opening ---- */

enum vexo_board {
    VEXO_VIRTUAL = 0, /**< the virtual board: signals, lines and pictures are simulated */
    VEXO_OFFLINE = 1, /**< no board: parameters and limits, no measured values, files or pictures */
    VEXO_SYSTEM = 2   /**< a board of this machine; its platform libraries are on the loader's path */
};

/** Bits of vexo_options::flags. */
enum vexo_flag {
    VEXO_LOOK = 1,     /**< read-only: no start value is written to the board, and sets, loads and
                            acquisitions are VEXO_ERR_STATE, also offline. Values are the applet's initial
                            ones. Parameters in the station file of VBOARD_STATION are ignored; a file
                            that `station` names must have none */
    VEXO_NO_ADVICE = 2 /**< refusals are explained without the scratch board, which makes them faster */
};

/** Options of vexo_open. Set `size`, and leave all other members zero unless you need them. */
typedef struct vexo_options {
    uint32_t size;  /**< sizeof(vexo_options); a larger one of a newer header is VEXO_ERR_ARGUMENT */
    int32_t board;  /**< enum vexo_board */
    uint32_t flags; /**< enum vexo_flag */
    /** Folder of the libraries: the applet in it or in its applets/, the virtual board's in virtual-board/.
     *  Null: the environment variable VEXO_LIBRARY_DIR, or else the folder relative to libvexo.so, which is
     *  vexo/ beside an installed one and the same folder in a build tree. */
    const char* library_dir;
    /** File of another applet library. Null: libGrab_TwinLaneLineColor.so of that folder. */
    const char* applet;
    /** Library with bridge_open_board and bridge_close_board, for a system whose board library does not open
     *  boards. Null: none. */
    const char* bridge;
    /** Station file (JSON) for a virtual board; the environment variable VBOARD_STATION is ignored then. Null: the
     *  one that this variable names, if set. */
    const char* station;
} vexo_options;

/**
 * Opens a station: loads the libraries (the platform's first, by absolute path, then the applet) and brings the
 * applet up.
 * @param options  null: a virtual board, all at their default locations. The texts are copied
 * @param station  receives the station; null after a failure
 * @return VEXO_OK; VEXO_ERR_LIBRARY, VEXO_ERR_UNAVAILABLE; for a station file the results of vexo_set_up. A
 *         process loads the libraries of one folder only, and has either virtual (or no) boards or those of
 *         the system: the others are VEXO_ERR_LIBRARY while one is open.
 */
int vexo_open(const vexo_options* options, vexo_station** station);

/** Ends an acquisition, frees the applet and closes the board. No other thread may be using the station. Does
 *  nothing for null. */
void vexo_close(vexo_station* station);

/** Describes the station as a JSON object: "version", "board" ("virtual", "system", "none"), "applet" {"name",
 *  "version"}, "files" (the loaded libraries), "parameters" (their number), "notes" (what the opening or
 *  the last question did, and how long it took). Release it with vexo_free. */
int vexo_info(vexo_station* station, char** json);

/* ---- parameters ---- */

/**
 * Returns the id of a parameter. Case and the prefix "FG_" do not matter, and a label such as "Width" is a name
 * too.
 * @return the id, above 0; VEXO_ERR_NAME: there is none, or more than one; the message has the nearest names
 */
int vexo_id(vexo_station* station, const char* name);

/** Kinds of values. */
enum vexo_kind {
    VEXO_INT32 = 1,
    VEXO_UINT32 = 2,
    VEXO_INT64 = 3,
    VEXO_UINT64 = 4,
    VEXO_DOUBLE = 5,
    VEXO_TEXT = 6,
    VEXO_ENUM = 7, /**< a 32-bit number with named entries */
    VEXO_FIELD = 8 /**< an array of unsigned 32-bit numbers */
};

/** Bits of vexo_parameter::access and of vexo_get_access. Without the last one the applet declares that the
 *  parameter should not be changed while an acquisition runs; its setter does not check that. */
enum vexo_access_bits { VEXO_READ = 1, VEXO_WRITE = 2, VEXO_WRITE_WHILE_ACQUIRING = 4 };

/** A parameter. The texts are valid until vexo_close. */
typedef struct vexo_parameter {
    int32_t id;
    int32_t kind;            /**< enum vexo_kind */
    uint32_t access;         /**< at the time of the call; another parameter may change it */
    uint32_t elements;       /**< of a field; else 0 */
    uint32_t entries;        /**< of an enumeration; else 0 */
    const char* name;        /**< "FG_WIDTH" */
    const char* label;       /**< "Width"; this and the following ones may be empty */
    const char* unit;        /**< "pixel" */
    const char* description; /**< one or more sentences */
    const char* group;       /**< labels from the top of the tree down, "Digital I/O / GPO" */
    const char* read_effect; /**< a side effect of a read, "clears when read" */
    const char* set_effect;  /**< a side effect of a set, "writes a file" */
} vexo_parameter;

/** Returns the number of parameters; 0 for a null station. */
uint32_t vexo_count(vexo_station* station);

/** Describes parameter `index`, below vexo_count, in the order of the tree: the parameters of a group are
 *  consecutive, its own before those of its sub-groups. */
int vexo_parameter_at(vexo_station* station, uint32_t index, vexo_parameter* parameter);

/** Describes the parameter with this id. */
int vexo_describe(vexo_station* station, int id, vexo_parameter* parameter);

/** An entry of an enumeration. The texts are valid until vexo_close. */
typedef struct vexo_entry {
    int32_t value;
    const char* symbol; /**< "FG_ON"; empty if it has none */
    const char* label;
} vexo_entry;

/** Describes entry `index` of an enumeration, in the published order. VEXO_ERR_NAME: there is no such entry;
 *  VEXO_ERR_KIND: no enumeration. */
int vexo_entry_at(vexo_station* station, int id, uint32_t index, vexo_entry* entry);

/** The published range of a number, or of the elements of a field. Numbers above 2^53 are rounded. */
typedef struct vexo_range {
    double minimum, maximum;
    double step; /**< 0: any value between them */
} vexo_range;

/** Reads the range that the applet publishes now; it depends on other parameters. Setters may accept less: see
 *  vexo_ask_limits. Takes negligible time. VEXO_ERR_KIND: no number. */
int vexo_get_range(vexo_station* station, int id, vexo_range* range);

/** Writes the present access bits to `access`. */
int vexo_get_access(vexo_station* station, int id, uint32_t* access);

/*
 * Reads of a number, converted from the parameter's own type. VEXO_ERR_KIND: a text or a field;
 * VEXO_ERR_VALUE: the number does not fit in the type. Takes the time of the applet's exported function and
 * some nanoseconds. A read may have a side effect (see vexo_parameter).
 */
int vexo_get_int(vexo_station* station, int id, int64_t* value);
int vexo_get_uint(vexo_station* station, int id, uint64_t* value);
/** The only read for a number with a fraction; whole numbers can be read as double too. */
int vexo_get_double(vexo_station* station, int id, double* value);

/**
 * Reads any value as text: a text unchanged, an enumeration by its symbol, a number so that vexo_set_text gives
 * the same value again, a field as its elements with commas between them.
 * @param buffer  receives the text and its final zero; may be null if *size is 0
 * @param size    in: bytes at `buffer`; out: bytes of the text with its zero, also with VEXO_ERR_SPACE
 */
int vexo_get_text(vexo_station* station, int id, char* buffer, size_t* size);

/** Reads `count` elements of a field from element `first` on into the caller's `values`. VEXO_ERR_ARGUMENT:
 *  `count` is 0, or the elements are not all in the field. */
int vexo_get_field(vexo_station* station, int id, uint32_t first, uint32_t count, uint32_t* values);

/*
 * Sets. VEXO_ERR_VALUE: the number does not fit in the parameter's own type (the details are those of a refused
 * value), or it is NaN, VEXO_ERR_KIND: it has no number; otherwise the applet's answer: FG_ERR_OUT_OF_RANGE,
 * FG_ERR_GRANULARITY, FG_ERR_NOT_AVAILABLE (read-only) or a code of the board.
 */
int vexo_set_int(vexo_station* station, int id, int64_t value);
int vexo_set_uint(vexo_station* station, int id, uint64_t value);
/** For a parameter with whole numbers, the double must have no fraction. */
int vexo_set_double(vexo_station* station, int id, double value);
/** Sets a parameter of any kind: a text unchanged, an enumeration by symbol, label or number, a number in
 *  decimal or as 0x...; all elements of a field to one number. VEXO_ERR_VALUE: it is none of these. */
int vexo_set_text(vexo_station* station, int id, const char* text);
/** Sets `count` elements of a field from element `first` on. */
int vexo_set_field(vexo_station* station, int id, uint32_t first, uint32_t count, const uint32_t* values);

/** Order in which vexo_set_all sets. */
enum vexo_order {
    VEXO_GIVEN_ORDER = 0,
    VEXO_ANY_ORDER =
        1 /**< if the given order fails: one in which all are accepted, found on the scratch board */
};

/**
 * Sets many parameters, all or none: after a refusal, those already set get their old values again.
 * @param assignments  `count` texts "NAME=VALUE" (also "FG_LUT_VALUE_RED[0..255]=5"), values as for vexo_set_text.
 *                     All are read before the first one is set
 * @return VEXO_OK; VEXO_ERR_NAME, VEXO_ERR_VALUE; otherwise the applet's answer to the refused one
 */
int vexo_set_all(vexo_station* station, const char* const* assignments, size_t count, int order);

/* ---- files ---- */

/** Saves the parameters to a configuration file, whose name must contain ".mcf". VEXO_ERR_FILE;
 *  VEXO_ERR_STATE: offline. */
int vexo_save(vexo_station* station, const char* file);

/** Loads a configuration file. Returns the applet's code: FG_OK even if setters refuse some of its values;
 *  vexo_ask_check shows in advance what would be lost. FG_ERR_LOAD_CONFIG: nothing, or not all, was loaded.
 *  VEXO_ERR_FILE: it cannot be read. */
int vexo_load(vexo_station* station, const char* file);

/** Makes the XML document (GenApi 1.0) that describes the parameters with their present limits. Release it with
 *  vexo_free. */
int vexo_document(vexo_station* station, char** xml);

/* ---- questions ---- */

/** An answer to a question. */
typedef struct vexo_answer vexo_answer;

/** Returns the answer as text, one or more lines without a final line break. Valid until vexo_answer_free;
 *  never null. */
const char* vexo_answer_text(const vexo_answer* answer);
/** Returns the answer as JSON: the members that docs/json/ describes for the command of that name. Valid as long
 *  as the text. */
const char* vexo_answer_json(const vexo_answer* answer);
/** Releases an answer. Does nothing for null. */
void vexo_answer_free(vexo_answer* answer);

/**
 * Finds what setters accept now, and what sets each limit.
 * @param name   a parameter, or elements of a field ("FG_LUT_VALUE_RED[7]")
 * @param with   "NAME=VALUE" texts, separated by blanks, which are assumed to be set before; null: none. They are
 *               quoted as in a shell: "FG_FORMAT='Color 48bit' FG_WIDTH=512". If one of them is refused, that is
 *               the result, with the same message and details as from a set
 * @param range  receives the accepted range of a number; null: not wanted. For any other kind of parameter the
 *               result is VEXO_ERR_KIND, and the answer is given nevertheless
 */
int vexo_ask_limits(vexo_station* station, const char* name, const char* with, vexo_range* range,
                    vexo_answer** answer);

/** Finds why a value is refused ("FG_WIDTH=20000") or a parameter is read-only ("FG_LINE_DOWNSCALE"), and which
 *  changes of other parameters would allow it. `with` as above. */
int vexo_ask_why(vexo_station* station, const char* question, const char* with, vexo_answer** answer);

/**
 * Finds the effects of assignments in the given order; nothing is set. JSON: {"assignments": [{"name", "requested",
 * "value", "writes", "changes", "moves", "error"}], "notSet"}; a refused one has "error" and is the last.
 * @param assignments  `count` texts as for vexo_set_all
 */
int vexo_ask_plan(vexo_station* station, const char* const* assignments, size_t count, vexo_answer** answer);

/** Finds what a load of the configuration file would lose. JSON: {"code", "findings"}. */
int vexo_ask_check(vexo_station* station, const char* file, vexo_answer** answer);

/** Finds settings that are accepted, but probably not intended. JSON: {"findings"}. */
int vexo_ask_lint(vexo_station* station, vexo_answer** answer);

/* ---- the simulated station of a virtual board: time and signals ---- */
/* All return VEXO_ERR_NOT_VIRTUAL without a virtual board. Time is a count of ticks of 8 ns since the opening. */

#define VEXO_TICKS_PER_SECOND 125000000

/** Makes time follow the wall clock, `factor` times as fast (0.001 to 1000), or, with 0, stepped: it then
 *  advances only in vexo_advance and in waits. At first it is stepped. */
int vexo_clock(vexo_station* station, double factor);

/** Writes the present time to `tick`. */
int vexo_now(vexo_station* station, uint64_t* tick);

/** Advances stepped time by `ticks`. VEXO_ERR_STATE: it follows the clock. */
int vexo_advance(vexo_station* station, uint64_t ticks);

/** Connects a wave to an input, from the next tick on: "GPI_0=high", "GPI_2=square:1ms",
 *  "GPI_0=edges:1ms,2ms", "GPI_0,GPI_1=encoder:20000". VEXO_ERR_NAME: there is no such input; VEXO_ERR_VALUE:
 *  no such wave. */
int vexo_wave(vexo_station* station, const char* wave);

/** Sets up camera, belt, scene, inputs, clock and parameters from a station file. VEXO_ERR_FILE;
 *  VEXO_ERR_VALUE with the path of the wrong field; VEXO_ERR_NAME: there is no such parameter; otherwise the code
 *  of a refused one. */
int vexo_set_up(vexo_station* station, const char* file);

/** As vexo_set_up, with the contents of the file in memory. Relative file names start at `folder`; null: the
 *  working directory. */
int vexo_set_up_text(vexo_station* station, const char* json, const char* folder);

/* ---- events ---- */

/** An event. The name is valid until vexo_close. */
typedef struct vexo_event {
    uint64_t tick;
    uint64_t mask;    /**< as vexo_event_mask gives it; 0 if the event has none */
    const char* name; /**< the applet's name, or else that of the design */
} vexo_event;

/** Writes the mask of the event `name` to `mask`. VEXO_ERR_NAME: there is no such event. */
int vexo_event_mask(vexo_station* station, const char* name, uint64_t* mask);

/** Writes name and mask of event `index` (from 0, in the order of the masks). The name is valid until
 *  vexo_close. VEXO_ERR_NAME: there are no more. */
int vexo_event_at(vexo_station* station, uint32_t index, const char** name, uint64_t* mask);

/**
 * Takes the oldest event, or waits for one. Stepped time advances during the wait; otherwise the thread sleeps.
 * @param mask     events that are wanted; the others are dropped. 0: all
 * @param seconds  time-out in the station's time; 0: only an event that has already happened
 * @param wall     time-out in seconds of the wall clock; negative: none
 * @return VEXO_OK, VEXO_TIMEOUT, VEXO_ERR_NOT_VIRTUAL. A queue holds the last 65536 events; `lost` (may be null)
 *         receives how many older ones it has dropped since the station was opened
 */
int vexo_wait_event(vexo_station* station, uint64_t mask, double seconds, double wall, vexo_event* event,
                    uint64_t* lost);

/* ---- pictures ---- */

/** Behaviour of a memory that is full. */
enum vexo_memory {
    VEXO_KEEP = 0, /**< pictures stay until vexo_release; the acquisition waits for a free frame */
    VEXO_RING = 1  /**< the oldest picture is overwritten */
};

#define VEXO_MOST_FRAMES 65536 /**< of a memory */

/** Starts a continuous acquisition into a memory of `frames` frames (1 to VEXO_MOST_FRAMES), for which no pixels are
 *  allocated. VEXO_ERR_STATE: an acquisition is running. */
int vexo_start(vexo_station* station, uint32_t frames, int memory);

/** Ends the acquisition; waits for pictures in other threads return VEXO_ERR_STATE. Does nothing if none is
 *  running. */
int vexo_stop(vexo_station* station);

/** A picture. */
typedef struct vexo_picture {
    int64_t number;       /**< from 1, in an acquisition */
    uint64_t size;        /**< bytes: height * stride */
    uint32_t width;       /**< pixels of a line */
    uint32_t height;      /**< lines */
    uint32_t stride;      /**< bytes from line to line */
    uint32_t bits;        /**< of a component: 8, 10, 12, 14 or 16 */
    uint64_t first_line;  /**< tick at which the transfer of the first line started */
    uint64_t last_line;   /**< tick at which the transfer of the last line started */
    uint64_t arrival;     /**< tick at which the picture was complete */
    uint64_t lost_before; /**< images since the previous picture that did not fit in the buffer */
    uint64_t trigger;     /**< number of the start that it belongs to, from 1 */
    int64_t encoder;      /**< position of the encoder at the first line, in quarter steps */
    bool is_short;        /**< fewer lines than an image has */
    bool is_narrow;       /**< the source's lines were narrower than the width */
} vexo_picture;

/**
 * Waits for a picture. Stepped time advances to its arrival at most; otherwise the thread sleeps.
 * @param number   the picture; 0: the one after the highest that this function gave, or, if that was overwritten or
 *                 released, the next one in the memory. Threads that wait with 0 get different pictures; a wait
 *                 that fails takes none
 * @param seconds  time-out in the station's time
 * @param wall     time-out in seconds of the wall clock; negative: none
 * @param picture  receives its description; nothing is rendered yet
 * @return VEXO_OK; VEXO_TIMEOUT, with the most likely reason in the message; VEXO_ERR_STATE: no acquisition runs;
 *         VEXO_ERR_GONE: the picture of that number was overwritten or released
 */
int vexo_wait_picture(vexo_station* station, int64_t number, double seconds, double wall,
                      vexo_picture* picture);

/**
 * Renders the bytes of a picture directly to the caller's memory. Threads may render at the same time.
 * @param destination  receives the lines one after the other. A line has blue, green, red of each pixel from its
 *                     lowest bit on, without a gap: with 8 bits that is a byte each, with 16 bits two bytes, else
 *                     packed bits
 * @param size         bytes at `destination`; vexo_picture::size are needed, VEXO_ERR_SPACE
 * @return VEXO_OK; VEXO_ERR_GONE, VEXO_ERR_STATE
 */
int vexo_render(vexo_station* station, int64_t number, void* destination, uint64_t size);

/** Releases the frame of a picture. VEXO_ERR_GONE, VEXO_ERR_STATE. */
int vexo_release(vexo_station* station, int64_t number);

/** Unpacks the bytes `data` of a picture to `pixels`, 3 * width * height numbers: red, green and blue of each
 *  pixel, 16 bits each, with the values of the picture. Needs no station. */
int vexo_unpack(const vexo_picture* picture, const void* data, uint16_t* pixels);

/** Writes the picture to a file, in the format of its suffix: .png, .tiff (.tif), .ppm or .raw.
 *  VEXO_ERR_VALUE: it has another suffix; VEXO_ERR_FILE; VEXO_ERR_UNAVAILABLE: built without that format. Needs
 *  no station. */
int vexo_write_picture(const vexo_picture* picture, const void* data, const char* file);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif
#endif
