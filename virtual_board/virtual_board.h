/**
 * Control of the virtual board: a software model of the grabber and its design behind libgrabcore5.so,
 * libtslrt.so and libvexo_hw.so.
 *
 * A host opens the three libraries by absolute path, libvexo_hw.so first, and finds these functions in
 * libvexo_hw.so. Everything that a design *is* (which parameters, events, registers and runtime entry points
 * it has) is set for the whole process and holds for designs loaded and runtimes bound afterwards; everything
 * that a board *does* (values, faults, access log) belongs to one board. All functions may be called from any
 * thread. Unknown names answer VBOARD_UNKNOWN and change nothing.
 *
 * No C++ exception leaves a function. If memory is lacking, those with a code answer VBOARD_NO_MEMORY, those that give
 * an object null, vboard_now 0, and vboard_advance has moved less; the others have done nothing.
 */
#ifndef VIRTUAL_BOARD_H
#define VIRTUAL_BOARD_H

#include "vexo/board_access.h"
#include "vexo/fg_api.h"

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

enum {
    VBOARD_OK = 0,
    VBOARD_UNKNOWN = -1,
    VBOARD_TOO_SMALL = -2,
    VBOARD_TIMEOUT = -3,
    VBOARD_GONE = -4,
    VBOARD_NO_MEMORY = -5
};

/** A new board with the design's start values; to be handed to Std_entry. Close it after its last handle. */
LOOMdevice* vboard_open(void);
/** Releases a board; it is gone when the last handle of it is freed too. A null board does nothing. */
void vboard_close(LOOMdevice* board);
/** Puts start values back, clears the log, forgets faults, forced answers, raised events and the function that
 *  watches accesses. What is logged stays chosen. */
void vboard_reset(LOOMdevice* board);

/** How many "boards", "designs", "handles" (inner ones) or "strings" (handed out by the runtime) are alive.
 *  Freeing a handle takes its strings along. */
int vboard_live(const char* what);

/** Takes a design parameter (full name, "Device1_...") out of every design or puts it back. */
int vboard_lack_parameter(const char* name, bool lacking);
/** Lets a design parameter answer to a second name in every design, which no other parameter may have. So a
 *  design can have more of a kind, say output formats, than the model. Logs give the first name. */
int vboard_alias_parameter(const char* alias, const char* name);
/** Takes an event out of every design or puts it back; later events move up by one place. */
int vboard_lack_event(const char* name, bool lacking);
/** Hides a function of libgrabcore5.so from dlsym or shows it again. */
int vboard_hide_entry(const char* name, bool hidden);
/** Appends `count` events "Extra0", "Extra1", ... (published) behind the design's own. */
void vboard_extra_events(int count);
/** Makes the design loader refuse every design, or load again. */
void vboard_refuse_design(bool refuse);
/** Makes the runtime's init answer null with this last error; `fail` false: work again. */
void vboard_fail_init(bool fail, int lastError);
/** All of the above back to normal. */
void vboard_restore_design(void);

/** What an access was. Bits, so that they form a mask. */
enum {
    VBOARD_SET = 1,            /**< typed set of a design parameter */
    VBOARD_GET = 2,            /**< typed get of a design parameter or of one of the runtime's own */
    VBOARD_REGISTER_WRITE = 4, /**< VexoRegisterWrite */
    VBOARD_REGISTER_READ = 8,  /**< VexoRegisterRead */
    VBOARD_RESOLVE = 16,       /**< Fg_getParameterIdByName */
    VBOARD_CALL = 32           /**< any other function of the runtime that takes the handle */
};

/** Which kinds of access are logged and count for faults. At start all but RESOLVE and CALL. */
void vboard_log_kinds(LOOMdevice* board, unsigned mask);
/** Number of accesses logged since the last clear. After 1,000,000 the log is full: later accesses happen and
 *  count, but are not logged. */
size_t vboard_log_size(LOOMdevice* board);
/**
 * Writes access `index` as one line, ended, without line break, into `text` of `size` bytes:
 *   "set Device1_Process0_Buffer_0_XLength u32 1024"      u32 i32 u64 i64 by tag, decimal
 *   "set Device1_Process0_Trigger_Trigger_ExsyncPeriod f64 200"   shortest decimal that reads back the same
 *   "get Device1_Process0_AppletProperties_AppletUid text ABC"
 *   "set Device1_Process0_LookupTable_R_LUTcontent field 0+16384"   first element + count
 *   "write Control u32 1" / "read Control u32 1"   registers, by width u32 or u64
 *   "resolve NAME = ID", "call Fg_saveConfig"
 * What has no name in the design goes by its id: "get #3050 u32 1", "set #0 u32 5 = -2070".
 * A failed access ends in " = " and its code; a failed get has no value: "get NAME u32 = -2010".
 * Returns the length, or VBOARD_UNKNOWN for an index outside, VBOARD_TOO_SMALL.
 */
int vboard_log_line(LOOMdevice* board, size_t index, char* text, size_t size);
void vboard_log_clear(LOOMdevice* board);

enum { VBOARD_ONCE = 0, VBOARD_FROM_THEN_ON = 1 };
/** Access number `k` from now on (1: the next), and with VBOARD_FROM_THEN_ON all later ones too, fails with
 *  `code` and has no effect. k 0: no such fault. */
void vboard_fail_access(LOOMdevice* board, unsigned k, int code, int how);
/** Number of accesses since vboard_fail_access was last called. */
unsigned vboard_access_count(LOOMdevice* board);
/** Every access of this parameter or register fails with `code`; 0: works again. */
int vboard_fail_name(LOOMdevice* board, const char* name, int code);
/** Watches the accesses of a board. */
typedef void vboard_access_function(void* context);
/**
 * Calls `function` with `context` at the beginning of every access that is logged, in the thread that makes it;
 * null: no watcher. No lock is held meanwhile: the function may call the board, wait
 * for another thread, or never return because its thread ends there. The access has not happened then.
 */
void vboard_on_access(LOOMdevice* board, vboard_access_function* function, void* context);
/** From now on these functions of the runtime answer `value` and do nothing (Fg_FreeGrabber frees all the
 *  same): Fg_getAppletId, Fg_AcquireEx, Fg_stopAcquireEx, Fg_getStatusEx, Fg_getLastPicNumberEx,
 *  Fg_getLastPicNumberBlockingEx, Fg_saveConfig, Fg_loadConfig, Fg_FreeGrabber. */
int vboard_answer(LOOMdevice* board, const char* function, int64_t value);
/** What the runtime's Fg_getLastErrorNumber answers for handles of this board. */
void vboard_last_error(LOOMdevice* board, int code);

/** Saves or loads a configuration file: Fg_saveConfig or Fg_loadConfig of an applet. */
typedef int vboard_config_function(Fg_Struct* fg, const char* file);
/** What the runtime's Fg_saveConfig and Fg_loadConfig call with the applet's handle `fg`; before,
 *  and with null functions, they answer -2130. They may call the board. */
void vboard_attach_applet(LOOMdevice* board, Fg_Struct* fg, vboard_config_function* save,
                          vboard_config_function* load);

/** Raises an event of the design (its own name, or one of "Extra0", ...), as the hardware would, once. */
int vboard_raise_event(LOOMdevice* board, const char* name);
/** For the first argument of Fg_getStatusEx, which otherwise gives the number of the last picture: how often the
 *  events of the mask in its second argument were raised since they were last asked for. A mask is as
 *  Fg_getEventMask gives it; the events past the 64th have none. */
enum {
    VBOARD_STATUS_EVENTS = 1000,
    /* States of the station, whatever the mask is. */
    VBOARD_STATUS_TICK = 1001,                 /**< its time */
    VBOARD_STATUS_LINES = 1002,                /**< lines of the source so far */
    VBOARD_STATUS_FILL_LEVEL = 1003,           /**< of the buffer in percent; the overflow flag stays */
    VBOARD_STATUS_LOST_IMAGES = 1004,          /**< no room in the buffer */
    VBOARD_STATUS_IGNORED_TRIGGERS = 1005,     /**< of images, while one was in progress */
    VBOARD_STATUS_LOST_PULSES = 1006,          /**< of the line trigger, while ExSync was active */
    VBOARD_STATUS_LOST_CAMERA_TRIGGERS = 1007, /**< while a line or frame was in transfer */
    VBOARD_STATUS_DROPPED_EVENTS = 1008,       /**< that left the queue of vboard_next_event */
    VBOARD_STATUS_WAITS = 1009,                /**< of the DMA, as no frame of the memory was free */
    VBOARD_STATUS_CAMERA = 1010                /**< at the port: one of VBOARD_CAMERA_NONE and so on */
};
/** States of the camera port. */
enum {
    VBOARD_CAMERA_NONE = 0,
    VBOARD_CAMERA_TRIGGERED = 1,    /**< a line for each edge of the camera trigger */
    VBOARD_CAMERA_FREE_RUNNING = 2, /**< lines by itself */
    VBOARD_CAMERA_LINK_LOST = 3
};

/*
 * The line-scan station of the board: signals, lines and pictures in simulated time.
 *
 * Time is a count of ticks of 8 ns from vboard_open on. At first it is stepped: it moves in vboard_advance, and in
 * Fg_getLastPicNumberBlockingEx for a picture of the station, and follows no clock. A write of a parameter acts
 * from the next tick on. A board on which none of these functions is called has no station, and costs none.
 * Inputs are numbered 0 to 7 (GPI) and 8 to 11 (front GPI).
 */

/** Lets time follow the machine's clock, `factor` times as fast (0.001 to 1000), or lets it be stepped again, from where it
 *  is (0). With the clock, each access of the board and each of these functions lets time catch up first, and a wait for
 *  a picture sleeps; other threads may use the board meanwhile. Time stays behind where the machine is too slow: an
 *  access does at most some hundredths of a second of work. A wait goes on by the clock that there is. VBOARD_UNKNOWN: a null
 *  board, or another factor. vboard_reset makes time stepped. */
int vboard_clock(LOOMdevice* board, double factor);
/** What vboard_advance answers while time follows the machine's clock. */
#define VBOARD_NOT_STEPPED UINT64_MAX
/** The time; 0 for a null board. */
uint64_t vboard_now(LOOMdevice* board);
/** Lets time move by `ticks` and gives the new time. It is less than asked for if very much happens (some 2^26 ticks
 *  with an edge in them): then ask for the rest. VBOARD_NOT_STEPPED: time follows the clock; nothing was done. */
uint64_t vboard_advance(LOOMdevice* board, uint64_t ticks);

/** Connects a level that stays to an input, from the next tick on. VBOARD_UNKNOWN: there is no such input. */
int vboard_wave_level(LOOMdevice* board, unsigned input, bool level);
/** Connects a square wave: it rises at the tick `rise` and every `period` ticks after it, for `high` ticks. */
int vboard_wave_square(LOOMdevice* board, unsigned input, uint64_t rise, uint64_t period, uint64_t high);
/** A level from a tick on. */
typedef struct vboard_edge {
    uint64_t tick;
    bool level;
} vboard_edge;
/** Connects a level with edges, in the order of their ticks. They are copied. */
int vboard_wave_edges(LOOMdevice* board, unsigned input, bool level, const vboard_edge* edges, size_t count);
/** So many ticks (at most 2^40) in which the speed changes evenly. Speeds are quarter steps of an encoder a second,
 *  negative backwards, at most ten million. */
typedef struct vboard_speed {
    uint64_t ticks;
    int32_t from, to;
} vboard_speed;
/** Connects an encoder to two inputs. It moves from the next tick on; after the last piece its speed stays. */
int vboard_wave_encoder(LOOMdevice* board, unsigned inputA, unsigned inputB, const vboard_speed* pieces,
                        size_t count);

/** A line-scan camera. It takes a line for each rising edge of the camera trigger, or by itself. LVAL rises when the
 *  exposure ends and lasts a tick for each 32 pixels; an edge before that is over is lost and counted. Its components have
 *  as many bits as Device1_Process0_Buffer_0_PixelFormat says. Values are proportional to the exposure. */
typedef struct vboard_camera {
    /** Pixels of a line, 1 to 16384. */
    uint32_t width;
    /** Lines a second that it takes by itself, no more than exposure and transfer allow; 0: it waits for the trigger. */
    uint32_t line_rate;
    /** Its own exposure time in ticks. It counts in free run, and as long as the design's
     *  ..._CamTrigger0_CLHSTrigger_EnablePulseWidth_Value is 0; else it exposes while the trigger is high. */
    uint32_t exposure;
    /** Ticks after which a pixel has the value of the scene; 0: `exposure`. */
    uint32_t full_exposure;
} vboard_camera;
/** What is wrong with a camera. */
typedef struct vboard_camera_faults {
    /** Colours in the order of the link, each once: 0 red, 1 green, 2 blue. */
    uint8_t order[3];
    /** Of so many triggers the last one makes no line, and is not counted as lost; 0: all make one. */
    uint32_t drop_every;
    /** Of so many lines the last one is short; 0: none. */
    uint32_t short_every;
    /** Its pixels, 1 to the width. */
    uint32_t short_width;
    /** Ticks after which the link is lost, and no line comes; 0: it stays. */
    uint64_t lost_after;
    /** Ticks until it is back; 0: never. */
    uint64_t lost_for;
} vboard_camera_faults;
/** Attaches a camera to the port from the next tick on, in place of the one that was there. Null `faults`: it has none.
 *  While the simulator is the source the camera takes no line. VBOARD_UNKNOWN: a null board or camera, or a value beyond
 *  the limits above; nothing has changed then. */
int vboard_camera_attach(LOOMdevice* board, const vboard_camera* camera, const vboard_camera_faults* faults);
/** Takes the camera off, which is an event: the link is lost. Without one nothing happens. */
int vboard_camera_detach(LOOMdevice* board);

/** For an input that is not used. */
#define VBOARD_NO_INPUT 0xffffU
/** A belt that moves what the camera sees. */
typedef struct vboard_belt_setup {
    /** Its movement, with speeds in micrometres a second here, at most a hundred million; after the last piece its speed
     *  stays. The pieces are copied. */
    const vboard_speed* pieces;
    size_t count;
    /** Inputs of an encoder on it, both or none: VBOARD_NO_INPUT. */
    unsigned encoder_a, encoder_b;
    /** The way of a quarter step, in nanometres. */
    uint32_t encoder_step;
    /** Input of a light barrier, high while an object is in it, or VBOARD_NO_INPUT. */
    unsigned barrier;
    /** How far before the camera it is, in micrometres; negative: after it. */
    int64_t barrier_ahead;
} vboard_belt_setup;
/** Starts a belt, which is at place 0 at the next tick, in place of the one that was there, and connects encoder and
 *  barrier. The barrier has its first 65536 edges. VBOARD_UNKNOWN: a null board or setup, no such input, or the encoder
 *  would make more than ten million quarter steps a second; nothing has changed then. */
int vboard_belt(LOOMdevice* board, const vboard_belt_setup* belt);

/** Something on the belt, in micrometres. The camera sees its front when the belt has moved to `place`. */
typedef struct vboard_object {
    int64_t place;
    int64_t length;
} vboard_object;
/** What the camera sees. Without vboard_scene it is the chart, all over the belt, with pixels of 100 micrometres. */
typedef struct vboard_scene_setup {
    /** Width and height of a pixel on the belt, in nanometres, above 0. */
    uint32_t pixel;
    /** Size of an image that repeats in both directions, at most 16384 x 65536 and 2^24 pixels. */
    uint32_t width, height;
    /** Its rows, red, green and blue in 16 bits each, which are copied. Null: a generated chart with rulers and the number
     *  of each line. */
    const uint16_t* components;
    /** Objects, which are copied. Each shows the image or chart from its front on, and between them the belt is dark; what
     *  overlaps is one object. At most 65536; 0: the image is all over the belt. */
    const vboard_object* objects;
    size_t object_count;
    /** Largest deviation of a component, of 65535. It follows from the seed, the line's number and the pixel. */
    uint32_t noise;
    uint64_t seed;
} vboard_scene_setup;
/** Puts a scene on the belt. Pictures show it from the first line of the next image on, the light barrier at once.
 *  VBOARD_UNKNOWN: a null board or scene, or a value beyond the limits above; nothing has changed then. */
int vboard_scene(LOOMdevice* board, const vboard_scene_setup* scene);

/** How many bytes the DMA moves in a second; 0: as many as the link. */
void vboard_dma_rate(LOOMdevice* board, uint64_t bytesPerSecond);

/** A memory for pictures: the `memory` argument of Fg_AcquireEx. */
typedef struct vboard_frames vboard_frames;
enum { VBOARD_RING = 0, VBOARD_BLOCKING = 1 };
/** A new memory of so many frames of so many bytes. In a ring the oldest picture is overwritten; else a picture stays
 *  until it is released, and the DMA waits. Null for a null board or no frames. It keeps the board until it is freed.
 *  Fg_AcquireEx answers FG_ERR_INVALID_ARGUMENT for what is no memory of the board, and FG_ERR_BUFFER if a picture is
 *  larger than a frame. Fg_getLastPicNumberBlockingEx then takes its timeout in simulated seconds and answers
 *  VBOARD_TIMEOUT after it, and FG_ERR_NOT_AVAILABLE when the acquisition ends. */
vboard_frames* vboard_memory(LOOMdevice* board, size_t frames, uint64_t bytes, int kind);
/** From now on the memory has so many frames, which may be none: the DMA of a blocking one waits then. Pictures that
 *  are there stay until they are overwritten or released. VBOARD_UNKNOWN for a null memory. */
int vboard_memory_frames(vboard_frames* memory, size_t frames);
/** Frees a memory, which no other thread may use any more. An acquisition into it ends. Null does nothing. */
void vboard_memory_free(vboard_frames* memory);

/** Lets time move to the arrival of a picture, but by no more than `ticks`, and gives the number of the last one: what
 *  Fg_getLastPicNumberBlockingEx does with a timeout in seconds. VBOARD_TIMEOUT: it has not come. FG_ERR_NOT_AVAILABLE:
 *  no acquisition into a memory of the board runs that it could belong to. */
int64_t vboard_wait(LOOMdevice* board, int64_t picture, uint64_t ticks);

/** A picture and where it comes from. */
typedef struct vboard_record {
    const uint8_t* data;     /**< its bytes, which are the memory's */
    uint64_t size;           /**< of them */
    int64_t picture;         /**< from 1 */
    uint64_t lost_before;    /**< images since the picture before it that the buffer had no room for */
    uint64_t trigger;        /**< number of the start that it belongs to, from 1 */
    int64_t encoder;         /**< place of the encoder at the first line, in quarter steps */
    uint64_t first_line;     /**< tick at which its transfer started */
    uint64_t last_line;      /**< the same of the last line */
    uint64_t arrival;        /**< tick at which all of it was in the memory */
    uint32_t width;          /**< pixels of a line */
    uint32_t lines;          /**< of this picture */
    uint32_t bits;           /**< of a component: 8, 10, 12, 14 or 16 */
    uint32_t bytes_per_line; /**< blue, green, red of each pixel from the lowest bit on, without a gap */
    bool is_short;           /**< fewer lines than the height of an image */
    bool is_narrow;          /**< the source's lines were narrower than what was to be stored of them */
} vboard_record;
/** Fills in the record of a picture. Its bytes are made now, and other threads can use the board meanwhile; each thread
 *  makes its own. They stay until the picture is overwritten or released, an acquisition begins or the memory is freed;
 *  those that were asked for last stay also when the picture is overwritten. VBOARD_GONE: the picture is not there,
 *  VBOARD_TOO_SMALL: it has become larger than a frame. */
int vboard_frame(vboard_frames* memory, int64_t picture, vboard_record* record);
/** As vboard_frame, but its bytes are made at a place of the caller, of `size` bytes, so that they need not be copied.
 *  The board is free meanwhile: other threads may access it and let time move. VBOARD_TOO_SMALL: the place has not
 *  room for it; the record, but for `data`, is filled in all the same. */
int vboard_frame_into(vboard_frames* memory, int64_t picture, void* place, uint64_t size,
                      vboard_record* record);
/** Gives the frame of a picture back. VBOARD_GONE: it is not there. */
int vboard_release(vboard_frames* memory, int64_t picture);

/** An event that happened. The name is the design's and lives as long as the process. */
typedef struct vboard_event {
    uint64_t tick;
    const char* name;
} vboard_event;
/** The oldest event of the station that was not asked for here yet. VBOARD_GONE: none. The queue keeps the last 65536.
 *  Fg_getStatusEx counts events apart from it. */
int vboard_next_event(LOOMdevice* board, vboard_event* event);
/** The edges of a signal from the tick `from` to the tick `to`, both included. `select` is the number by which the
 *  design selects it (1 ExSync, 21 GPI 0, 33 line start, ...). Writes at most `size` edges, and into `level`, unless
 *  null, the level before them. Gives the number of edges that there are, or VBOARD_GONE if the station no longer has the
 *  first of them: it keeps the last 16384 of each signal. */
int64_t vboard_signals(LOOMdevice* board, unsigned select, uint64_t from, uint64_t to, vboard_edge* edges,
                       size_t size, bool* level);

enum { VBOARD_CAMERA = 0, VBOARD_BUFFER = 1, VBOARD_OUTPUT = 2 };
/** Puts an image into the path at a debug point with its input on: rows of red, green and blue in 16 bits each, copied.
 *  It takes an acquisition of the station. VBOARD_UNKNOWN: no such point, input off, no acquisition, no sound size (at
 *  most 16384 x 65536 and 2^24 pixels), or no room. */
int vboard_inject(LOOMdevice* board, int point, uint32_t width, uint32_t height, const uint16_t* components);

/** Why the last write of 1 to a debug point's _Insert put no image of its _DebugFile in, in words: "its pixels end too early".
 *  Empty if it did, or there was none. Gives the length, VBOARD_UNKNOWN for a null pointer, or VBOARD_TOO_SMALL. */
int vboard_insert_trouble(LOOMdevice* board, char* text, size_t size);

/* The present value of a design parameter or register, past every check: no log, no fault, no direction. */
int vboard_poke_int(LOOMdevice* board, const char* name, int64_t value);
/** The value that a parameter changes to when it is read next. */
int vboard_poke_after_read(LOOMdevice* board, const char* name, int64_t value);
int vboard_poke_double(LOOMdevice* board, const char* name, double value);
int vboard_poke_text(LOOMdevice* board, const char* name, const char* value);
int vboard_peek_int(LOOMdevice* board, const char* name, int64_t* value);
int vboard_peek_double(LOOMdevice* board, const char* name, double* value);
/** Copies `count` elements of an array parameter from `first` on. */
int vboard_peek_field(LOOMdevice* board, const char* name, uint32_t first, uint32_t count, uint32_t* values);

#ifdef __cplusplus
}
#endif
#endif
