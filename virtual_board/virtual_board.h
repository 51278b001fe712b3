/**
 * Control of the virtual board: a software model of the grabber and its design, which implements
 * libgrabcore5.so, libtslrt.so and libvexo_hw.so.
 *
 * A host opens the three libraries by absolute path, libvexo_hw.so first, and looks these functions up in
 * libvexo_hw.so. Everything that a design *is* (which parameters, events, registers and runtime entry points
 * it has) is set for the whole process and applies to designs loaded and runtimes bound afterwards;
 * everything that a board *does* (values, faults, access log) belongs to one board. All functions may be
 * called from any thread. Unknown names give VBOARD_UNKNOWN and change nothing.
 *
 * No C++ exception leaves a function. If memory runs out, those with a code return VBOARD_NO_MEMORY, those
 * with an object null, and vboard_now 0; vboard_advance has advanced less; the others have done nothing.
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

/** Creates a board with the design's start values, for Std_entry. Close it after its last handle. */
LOOMdevice* vboard_open(void);
/** Releases a board, which is destroyed when its last handle is freed too. A null board does nothing. */
void vboard_close(LOOMdevice* board);
/** Restores start values, clears the log, and removes faults, forced answers, raised events and the function
 *  that watches accesses. The selection of logged kinds is kept. */
void vboard_reset(LOOMdevice* board);

/** How many "boards", "designs", "handles" (inner ones) or "strings" (returned by the runtime) exist.
 *  Freeing a handle also frees its strings. */
int vboard_live(const char* what);

/** Removes a design parameter (full name, "Device1_...") from every design, or restores it. */
int vboard_lack_parameter(const char* name, bool lacking);
/** Gives a design parameter a second name in every design, which no other parameter may have. This way a
 *  design can have more items of a kind, such as output formats, than the model. Logs show the first name. */
int vboard_alias_parameter(const char* alias, const char* name);
/** Removes an event from every design, or restores it; later events move up by one position. */
int vboard_lack_event(const char* name, bool lacking);
/** Hides a function of libgrabcore5.so from dlsym, or shows it again. */
int vboard_hide_entry(const char* name, bool hidden);
/** Appends `count` events "Extra0", "Extra1", ... (published) after the design's own. */
void vboard_extra_events(int count);
/** Makes the design loader refuse every design, or accept them again. */
void vboard_refuse_design(bool refuse);
/** Makes the runtime's init return null with this last error; with `fail` false, it works again. */
void vboard_fail_init(bool fail, int lastError);
/** Undoes all of the above. */
void vboard_restore_design(void);

/** Kinds of access. Bits, so that they form a mask. */
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
/** Number of accesses logged since the last clear. The log is full after 1,000,000: later accesses are
 *  performed and counted, but not logged. */
size_t vboard_log_size(LOOMdevice* board);
/**
 * Writes access `index` as one line, null-terminated, without line break, into `text` of `size` bytes:
 *   "set Device1_Process0_Buffer_0_XLength u32 1024"      u32 i32 u64 i64 by tag, decimal
 *   "set Device1_Process0_Trigger_Trigger_ExsyncPeriod f64 200"   shortest decimal that reads back the same
 *   "get Device1_Process0_AppletProperties_AppletUid text ABC"
 *   "set Device1_Process0_LookupTable_R_LUTcontent field 0+16384"   first element + count
 *   "write Control u32 1" / "read Control u32 1"   registers, by width u32 or u64
 *   "resolve NAME = ID", "call Fg_saveConfig"
 * An item without a name in the design is shown by its id: "get #3050 u32 1", "set #0 u32 5 = -2070".
 * A failed access ends in " = " and its code; a failed get has no value: "get NAME u32 = -2010".
 * Returns the length, VBOARD_UNKNOWN if the index is out of range, or VBOARD_TOO_SMALL.
 */
int vboard_log_line(LOOMdevice* board, size_t index, char* text, size_t size);
void vboard_log_clear(LOOMdevice* board);

enum { VBOARD_ONCE = 0, VBOARD_FROM_THEN_ON = 1 };
/** Access number `k` from now on (1: the next), and with VBOARD_FROM_THEN_ON all later ones too, fails with
 *  `code` and has no effect. k 0: no such fault. */
void vboard_fail_access(LOOMdevice* board, unsigned k, int code, int how);
/** Number of accesses since vboard_fail_access was last called. */
unsigned vboard_access_count(LOOMdevice* board);
/** Every access of this parameter or register fails with `code`; 0 ends that. */
int vboard_fail_name(LOOMdevice* board, const char* name, int code);
/** Watches the accesses of a board. */
typedef void vboard_access_function(void* context);
/**
 * Calls `function` with `context` at the beginning of every access that is logged, in the thread that makes
 * it; null removes the function. No lock is held during the call: the function may call the board, wait
 * for another thread, or never return because its thread ends there. In that case the access does not happen.
 */
void vboard_on_access(LOOMdevice* board, vboard_access_function* function, void* context);
/** From now on these functions of the runtime return `value` and do nothing (Fg_FreeGrabber still
 *  frees): Fg_getAppletId, Fg_AcquireEx, Fg_stopAcquireEx, Fg_getStatusEx, Fg_getLastPicNumberEx,
 *  Fg_getLastPicNumberBlockingEx, Fg_saveConfig, Fg_loadConfig, Fg_FreeGrabber. */
int vboard_answer(LOOMdevice* board, const char* function, int64_t value);
/** Sets the result of the runtime's Fg_getLastErrorNumber for handles of this board. */
void vboard_last_error(LOOMdevice* board, int code);

/** Saves or loads a configuration file: Fg_saveConfig or Fg_loadConfig of an applet. */
typedef int vboard_config_function(Fg_Struct* fg, const char* file);
/** Sets the functions that the runtime's Fg_saveConfig and Fg_loadConfig call with the applet's handle `fg`;
 *  before, and with null functions, they return -2130. The functions may call the board. */
void vboard_attach_applet(LOOMdevice* board, Fg_Struct* fg, vboard_config_function* save,
                          vboard_config_function* load);

/** Raises an event of the design (by its own name, or "Extra0", ...) once, as the hardware would. */
int vboard_raise_event(LOOMdevice* board, const char* name);
/** For the first argument of Fg_getStatusEx, which otherwise returns the number of the last picture: how
 *  often the events of the mask in its second argument were raised since the last query. The mask is as
 *  returned by Fg_getEventMask; the events past the 64th have none. */
enum {
    VBOARD_STATUS_EVENTS = 1000,
    /* States of the station; the mask is ignored. */
    VBOARD_STATUS_TICK = 1001,                   /**< its current time */
    VBOARD_STATUS_LINES = 1002,                  /**< lines of the source so far */
    VBOARD_STATUS_FILL_LEVEL = 1003,             /**< of the buffer in percent; the overflow flag is kept */
    VBOARD_STATUS_LOST_IMAGES = 1004,            /**< the buffer was full */
    VBOARD_STATUS_IGNORED_TRIGGERS = 1005,       /**< of images, while one was in progress */
    VBOARD_STATUS_LOST_PULSES = 1006,            /**< of the line trigger, while ExSync was active */
    VBOARD_STATUS_LOST_CAMERA_TRIGGERS = 1007,   /**< while a line or frame was in transfer */
    VBOARD_STATUS_DROPPED_EVENTS = 1008,         /**< removed from the full queue of vboard_next_event */
    VBOARD_STATUS_WAITS = 1009,                  /**< of the DMA, because no frame of the memory was free */
    VBOARD_STATUS_CAMERA = 1010,                 /**< at the port: one of VBOARD_CAMERA_NONE and so on */
    VBOARD_STATUS_DROPPED_CAMERA_TRIGGERS = 1011 /**< by the fault drop_every of the camera */
};
/** States of the camera port. */
enum {
    VBOARD_CAMERA_NONE = 0,
    VBOARD_CAMERA_TRIGGERED = 1,    /**< a line for each edge of the camera trigger */
    VBOARD_CAMERA_FREE_RUNNING = 2, /**< lines at the camera's own rate */
    VBOARD_CAMERA_LINK_LOST = 3
};

/*
 * The line-scan station of the board: signals, lines and pictures in simulated time.
 *
 * Time is a count of ticks of 8 ns since vboard_open. At first it is stepped: it advances in vboard_advance,
 * and in Fg_getLastPicNumberBlockingEx for a picture of the station, and follows no clock. A write of a
 * parameter takes effect from the next tick on. If none of these functions is called on a board, it has no
 * station and no cost for one. Inputs are numbered 0 to 7 (GPI) and 8 to 11 (front GPI).
 */

/** Limits of lines, images, encoders, scenes and the clock, and the number of edges that it keeps of each signal. */
enum {
    VBOARD_WIDEST = 16384,        /**< pixels of a line */
    VBOARD_HIGHEST = 65536,       /**< lines of an image */
    VBOARD_MOST_PIXELS = 1 << 24, /**< of an image */
    VBOARD_KEPT_EDGES = 16384,
    VBOARD_FASTEST_ENCODER = 10000000, /**< quarter steps per second, in either direction */
    VBOARD_MOST_OBJECTS = 65536,       /**< of a scene */
    VBOARD_GPIS = 8,
    VBOARD_INPUTS = 12, /**< the GPI, then the front GPI */
    VBOARD_TICKS_PER_SECOND = 125000000
};
#define VBOARD_LONGEST_PIECE (UINT64_C(1) << 40) /**< ticks of a piece of a movement */
#define VBOARD_SLOWEST_CLOCK 0.001               /**< how many times as fast as the wall clock */
#define VBOARD_FASTEST_CLOCK 1000.0              /**< the same */

/** Makes time follow the wall clock, `factor` times as fast (VBOARD_SLOWEST_CLOCK to VBOARD_FASTEST_CLOCK), or makes it stepped again from
 *  its current value (0). With the clock, each access of the board and each of these functions first advances
 *  time, and a wait for a picture sleeps; other threads may use the board during the wait. Time lags if the
 *  machine is too slow: an access does at most some hundredths of a second of work, followed by at least as
 *  long a pause. A lag beyond one second of the clock is not made up. A running wait adapts to a change of the
 *  clock. VBOARD_UNKNOWN: a null board, or another factor. vboard_reset makes time stepped. */
int vboard_clock(LOOMdevice* board, double factor);
/** Result of vboard_advance while time follows the wall clock. */
#define VBOARD_NOT_STEPPED UINT64_MAX
/** The time; 0 for a null board. */
uint64_t vboard_now(LOOMdevice* board);
/** Advances time by `ticks` and returns the new time. A call processes at most some 2^26 ticks with an edge and
 *  then returns early; call it again for the rest. VBOARD_NOT_STEPPED: time follows the clock; nothing was
 *  done. */
uint64_t vboard_advance(LOOMdevice* board, uint64_t ticks);

/** Connects a constant level to an input, from the next tick on. VBOARD_UNKNOWN: there is no such input. */
int vboard_wave_level(LOOMdevice* board, unsigned input, bool level);
/** Connects a square wave: it rises at the tick `rise` and every `period` ticks after it, for `high` ticks. */
int vboard_wave_square(LOOMdevice* board, unsigned input, uint64_t rise, uint64_t period, uint64_t high);
/** A level from a tick on. */
typedef struct vboard_edge {
    uint64_t tick;
    bool level;
} vboard_edge;
/** Connects a level with edges, sorted by their ticks. They are copied. VBOARD_UNKNOWN: a null array with a
 *  count, or no such input. */
int vboard_wave_edges(LOOMdevice* board, unsigned input, bool level, const vboard_edge* edges, size_t count);
/** A number of ticks (at most VBOARD_LONGEST_PIECE) in which the speed changes linearly. Speeds are quarter steps of an
 *  encoder per second, negative backwards, at most VBOARD_FASTEST_ENCODER. */
typedef struct vboard_speed {
    uint64_t ticks;
    int32_t from, to;
} vboard_speed;
/** Connects an encoder to two inputs. It moves from the next tick on; the speed at the end of the last piece, which may
 *  have 0 ticks, is kept. The pieces are copied. VBOARD_UNKNOWN: a null array with a count, a speed or a number of
 *  ticks above the maximum, or not two different inputs; nothing has changed then. */
int vboard_wave_encoder(LOOMdevice* board, unsigned inputA, unsigned inputB, const vboard_speed* pieces,
                        size_t count);

/** 1 if a wave is connected to the input, by one of these functions or as encoder or barrier of a belt; else 0.
 *  VBOARD_UNKNOWN: a null board. */
int vboard_has_wave(LOOMdevice* board, unsigned input);

/** A line-scan camera. It takes a line for each rising edge of the camera trigger, or runs freely. LVAL rises when the
 *  exposure ends and lasts one tick per 32 pixels; a trigger edge before its end is lost and counted. The number of bits
 *  per component is that of Device1_Process0_Buffer_0_PixelFormat. Values are proportional to the exposure. */
typedef struct vboard_camera {
    /** Pixels of a line, 1 to VBOARD_WIDEST. */
    uint32_t width;
    /** Line rate in free run, in lines per second, limited by exposure and transfer time; 0: triggered. */
    uint32_t line_rate;
    /** Exposure time in ticks, used in free run and while the design's
     *  ..._CamTrigger0_CLHSTrigger_EnablePulseWidth_Value is 0; otherwise the camera exposes while the trigger is high. */
    uint32_t exposure;
    /** Exposure in ticks at which a pixel has the value of the scene; 0: `exposure`. */
    uint32_t full_exposure;
} vboard_camera;
/** Faults of a camera. */
typedef struct vboard_camera_faults {
    /** Colours in the order of the link, each once: 0 red, 1 green, 2 blue. */
    uint8_t order[3];
    /** One of every `drop_every` triggers is ignored and counted as dropped; 0: none. */
    uint32_t drop_every;
    /** One of every `short_every` lines is short; 0: none. */
    uint32_t short_every;
    /** Pixels of a short line, 1 to the width. */
    uint32_t short_width;
    /** Ticks until the link is lost; then there are no lines. 0: never. */
    uint64_t lost_after;
    /** Ticks from the loss until the link is restored; 0: never. */
    uint64_t lost_for;
} vboard_camera_faults;
/** Attaches a camera to the port from the next tick on, in place of a previous one. Null `faults`: none. While the
 *  simulator is the source, the camera takes no lines. VBOARD_UNKNOWN: a null board or camera, or a value beyond the
 *  limits above; nothing has changed then. */
int vboard_camera_attach(LOOMdevice* board, const vboard_camera* camera, const vboard_camera_faults* faults);
/** Detaches the camera and raises the link-lost event. Does nothing without a camera. */
int vboard_camera_detach(LOOMdevice* board);

/** For an input that is not used. */
#define VBOARD_NO_INPUT 0xffffU
/** A belt that moves the scene past the camera. */
typedef struct vboard_belt_setup {
    /** Movement. Speeds are in micrometres per second here, at most a hundred million; the speed at the end of the last
     *  piece is kept. The pieces are copied. */
    const vboard_speed* pieces;
    size_t count;
    /** Inputs of the belt's encoder; no encoder: both VBOARD_NO_INPUT. */
    unsigned encoder_a, encoder_b;
    /** Distance per quarter step, in nanometres. */
    uint32_t encoder_step;
    /** Input of a light barrier, high while an object is in it, or VBOARD_NO_INPUT. */
    unsigned barrier;
    /** Distance of the barrier before the camera, in micrometres; negative: behind the camera. */
    int64_t barrier_ahead;
} vboard_belt_setup;
/** Starts a belt in place of a previous one, and connects encoder and barrier. Its position is 0 at the next tick. The
 *  barrier signals its first 65536 edges only. VBOARD_UNKNOWN: a null board or setup, no such input, a speed or a number of
 *  ticks above the maximum, or an encoder faster than VBOARD_FASTEST_ENCODER; nothing has changed then. */
int vboard_belt(LOOMdevice* board, const vboard_belt_setup* belt);

/** An object on the belt; lengths in micrometres. Its front is at the camera when the belt has moved to `place`. */
typedef struct vboard_object {
    int64_t place;
    int64_t length;
} vboard_object;
/** A scene for the camera. The default is the chart, repeated along the belt, with pixels of 100 micrometres. */
typedef struct vboard_scene_setup {
    /** Width and height of a pixel on the belt, in nanometres, above 0. */
    uint32_t pixel;
    /** Size of an image that repeats in both directions, at most VBOARD_WIDEST x VBOARD_HIGHEST and VBOARD_MOST_PIXELS. */
    uint32_t width, height;
    /** Its rows, red, green and blue in 16 bits each, which are copied. Null: a generated chart with rulers and the number
     *  of each line. */
    const uint16_t* components;
    /** Objects, which are copied. Each shows the image or chart from its front on; the belt between them is dark.
     *  Overlapping objects form one. At most VBOARD_MOST_OBJECTS; 0: the image covers the whole belt. */
    const vboard_object* objects;
    size_t object_count;
    /** Largest deviation of a component; full scale is 65535. Seed, line number and pixel determine the deviation. */
    uint32_t noise;
    uint64_t seed;
} vboard_scene_setup;
/** Puts a scene on the belt. It applies to the light barrier at once, to pictures from the next image on.
 *  VBOARD_UNKNOWN: a null board or scene, or a value beyond the limits above; nothing has changed then. */
int vboard_scene(LOOMdevice* board, const vboard_scene_setup* scene);

/** Copies the surroundings of `like` to `board`: camera, belt, scene, waves of the inputs, and the rate of the DMA.
 *  Camera, belt and waves restart at the next tick, so a new board behaves as `like` did from its start. Inputs without a
 *  wave on `like` are not changed. VBOARD_UNKNOWN: a null board. */
int vboard_surround(LOOMdevice* board, LOOMdevice* like);

/** Sets the rate of the DMA in bytes per second; 0: the rate of the link. */
void vboard_dma_rate(LOOMdevice* board, uint64_t bytesPerSecond);

/** A memory for pictures: the `memory` argument of Fg_AcquireEx. */
typedef struct vboard_frames vboard_frames;
enum { VBOARD_RING = 0, VBOARD_BLOCKING = 1 };
/** Creates a memory of `frames` frames of `bytes` bytes. In a ring the oldest picture is overwritten; else a
 *  picture stays until it is released, and the DMA waits. Null for a null board or no frames. The memory
 *  keeps the board alive until freed. Fg_AcquireEx returns FG_ERR_INVALID_ARGUMENT for anything but a memory
 *  of the board, and FG_ERR_BUFFER if a picture is larger than a frame. Fg_getLastPicNumberBlockingEx then
 *  takes its timeout in simulated seconds and returns VBOARD_TIMEOUT after it, and FG_ERR_NOT_AVAILABLE when
 *  the acquisition ends. */
vboard_frames* vboard_memory(LOOMdevice* board, size_t frames, uint64_t bytes, int kind);
/** Changes the number of frames, which may be 0: the DMA of a blocking memory waits then. Existing pictures
 *  stay until they are overwritten or released. VBOARD_UNKNOWN for a null memory. */
int vboard_memory_frames(vboard_frames* memory, size_t frames);
/** Frees a memory, which no other thread may be using. An acquisition into it ends. Null does nothing. */
void vboard_memory_free(vboard_frames* memory);

/** Advances time to the arrival of a picture, but by at most `ticks`, and returns the number of the last one,
 *  as Fg_getLastPicNumberBlockingEx does with a timeout in seconds. VBOARD_TIMEOUT: the picture has not arrived
 *  within `ticks`. Other threads can use the board during the wait; stopping the acquisition ends it.
 *  FG_ERR_NOT_AVAILABLE: no acquisition that can take the picture into a memory of the board is running. */
int64_t vboard_wait(LOOMdevice* board, int64_t picture, uint64_t ticks);

/** A picture and its origin. */
typedef struct vboard_record {
    const uint8_t* data;     /**< its bytes, owned by the memory */
    uint64_t size;           /**< in bytes */
    int64_t picture;         /**< from 1 */
    uint64_t lost_before;    /**< images since the previous picture that did not fit in the buffer */
    uint64_t trigger;        /**< number of the start that it belongs to, from 1 */
    int64_t encoder;         /**< position of the encoder at the first line, in quarter steps */
    uint64_t first_line;     /**< tick at which its transfer started */
    uint64_t last_line;      /**< the same for the last line */
    uint64_t arrival;        /**< tick at which it was complete in the memory */
    uint32_t width;          /**< pixels of a line */
    uint32_t lines;          /**< of this picture */
    uint32_t bits;           /**< of a component: 8, 10, 12, 14 or 16 */
    uint32_t bytes_per_line; /**< blue, green, red of each pixel from the lowest bit on, without a gap */
    bool is_short;           /**< fewer lines than the height of an image */
    bool is_narrow;          /**< the source's lines were narrower than the width to be stored */
} vboard_record;
/** Fills in the record of a picture and renders its bytes. Other threads can use the board and render at the
 *  same time. The bytes are valid until the picture is overwritten or released, an acquisition begins
 *  or the memory is freed; the latest ones stay valid even if the picture is overwritten. VBOARD_GONE: the
 *  picture does not exist, VBOARD_TOO_SMALL: it has become larger than a frame. */
int vboard_frame(vboard_frames* memory, int64_t picture, vboard_record* record);
/** As vboard_frame, but renders the bytes to the caller's memory at `destination`, of `size` bytes, which saves a
 *  copy. The board is not locked during this: other threads may access it and advance time. VBOARD_TOO_SMALL:
 *  `size` is too small; the record, except for `data`, is still filled in. */
int vboard_frame_into(vboard_frames* memory, int64_t picture, void* destination, uint64_t size,
                      vboard_record* record);
/** Releases the frame of a picture. VBOARD_GONE: the picture does not exist. */
int vboard_release(vboard_frames* memory, int64_t picture);

/** An event that happened. The name is the design's and is valid until the process ends. */
typedef struct vboard_event {
    uint64_t tick;
    const char* name;
} vboard_event;
/** Takes the oldest event of the station from the queue. VBOARD_GONE: the queue is empty. It keeps the last
 *  65536. Fg_getStatusEx counts events independently. */
int vboard_next_event(LOOMdevice* board, vboard_event* event);
/** Takes the oldest events from the queue, at most `size`. Returns their number: 0 if the queue is empty. */
int vboard_next_events(LOOMdevice* board, vboard_event* events, size_t size);
/** The edges of a signal from the tick `from` to the tick `to`, both included. `select` is the number by
 *  which the design selects it (1 ExSync, 21 GPI 0, 33 line start, ...). Writes at most `size` edges, and
 *  into `level`, unless null, the level before them. Returns the number of edges in the span, or VBOARD_GONE
 *  if the station no longer has the first of them: it keeps the last VBOARD_KEPT_EDGES of each signal. */
int64_t vboard_signals(LOOMdevice* board, unsigned select, uint64_t from, uint64_t to, vboard_edge* edges,
                       size_t size, bool* level);

enum { VBOARD_CAMERA = 0, VBOARD_BUFFER = 1, VBOARD_OUTPUT = 2 };
/** Injects an image at a debug point with its input on: rows of red, green and blue in 16 bits each, copied.
 *  Needs a running acquisition of the station. VBOARD_UNKNOWN: no such point, input off, no acquisition,
 *  invalid size (at most VBOARD_WIDEST x VBOARD_HIGHEST and VBOARD_MOST_PIXELS), or no space for it now. */
int vboard_inject(LOOMdevice* board, int point, uint32_t width, uint32_t height, const uint16_t* components);

/** Why the last write of 1 to a debug point's _Insert injected no image of its _DebugFile, such as "its
 *  pixels end too early". Empty if it did, or there was no write. Returns the length, VBOARD_UNKNOWN for a
 *  null pointer, or VBOARD_TOO_SMALL. */
int vboard_insert_trouble(LOOMdevice* board, char* text, size_t size);

/* Current value of a design parameter or register. Bypasses every check: no log, fault or direction. */
int vboard_poke_int(LOOMdevice* board, const char* name, int64_t value);
/** Sets the value that a parameter changes to after its next read. */
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
