/**
 * A host for the applet: loads the virtual board and the applet library and calls the library's exported
 * functions, as the grabber runtime would. appletctl, the tests and the benchmarks stand on it.
 */
#ifndef APPLET_HOST_H
#define APPLET_HOST_H

#include "vexo/fg_api.h"
#include "virtual_board/virtual_board.h"

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <vector>

namespace applet_host {

/** A library or function that could not be found; the text says which, where it was looked for and why. */
struct HostError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/** The exported functions of the applet library, by name. */
struct AppletFunctions {
    decltype(&::Std_entry) Std_entry;
    decltype(&::Info) Info;
    decltype(&::Fg_setParameterWithType) Fg_setParameterWithType;
    decltype(&::Fg_getParameterWithType) Fg_getParameterWithType;
    decltype(&::Fg_freeParameterStringWithType) Fg_freeParameterStringWithType;
    decltype(&::Fg_getNrOfParameter) Fg_getNrOfParameter;
    decltype(&::Fg_getParameterName) Fg_getParameterName;
    decltype(&::Fg_getParameterId) Fg_getParameterId;
    decltype(&::Fg_getParameterIdByName) Fg_getParameterIdByName;
    decltype(&::Fg_getParameterInfo) Fg_getParameterInfo;
    decltype(&::Fg_getParameterInfoXML) Fg_getParameterInfoXML;
    decltype(&::Fg_getEventMask) Fg_getEventMask;
    decltype(&::Fg_getEventName) Fg_getEventName;
    decltype(&::Fg_saveConfig) Fg_saveConfig;
    decltype(&::Fg_loadConfig) Fg_loadConfig;
    decltype(&::Fg_getLastErrorNumber) Fg_getLastErrorNumber;
    decltype(&::Fg_FreeGrabber) Fg_FreeGrabber;
    decltype(&::Fg_getAppletId) Fg_getAppletId;
    decltype(&::Fg_AcquireEx) Fg_AcquireEx;
    decltype(&::Fg_stopAcquireEx) Fg_stopAcquireEx;
    decltype(&::Fg_getStatusEx) Fg_getStatusEx;
    decltype(&::Fg_getLastPicNumberEx) Fg_getLastPicNumberEx;
    decltype(&::Fg_getLastPicNumberBlockingEx) Fg_getLastPicNumberBlockingEx;
    decltype(&::Fg_AllocShading) Fg_AllocShading;
    decltype(&::Fg_FreeShading) Fg_FreeShading;
    decltype(&::Shad_SetSubValueLine) Shad_SetSubValueLine;
    decltype(&::Shad_SetMultValueLine) Shad_SetMultValueLine;
    decltype(&::Shad_SetFixedPatternNoiseLine) Shad_SetFixedPatternNoiseLine;
    decltype(&::Shad_GetMaxLine) Shad_GetMaxLine;
    decltype(&::Shad_GetAccess) Shad_GetAccess;
    decltype(&::Shad_FreeAccess) Shad_FreeAccess;
    decltype(&::Shad_WriteActLine) Shad_WriteActLine;
    int (*mkstemps)(char* pattern, int suffixLength);
};

/** The control functions of the virtual board, by name (see virtual_board.h). */
struct BoardFunctions {
    decltype(&::vboard_open) open;
    decltype(&::vboard_close) close;
    decltype(&::vboard_reset) reset;
    decltype(&::vboard_live) live;
    decltype(&::vboard_lack_parameter) lack_parameter;
    decltype(&::vboard_alias_parameter) alias_parameter;
    decltype(&::vboard_lack_event) lack_event;
    decltype(&::vboard_hide_entry) hide_entry;
    decltype(&::vboard_extra_events) extra_events;
    decltype(&::vboard_refuse_design) refuse_design;
    decltype(&::vboard_fail_init) fail_init;
    decltype(&::vboard_restore_design) restore_design;
    decltype(&::vboard_log_kinds) log_kinds;
    decltype(&::vboard_log_size) log_size;
    decltype(&::vboard_log_line) log_line;
    decltype(&::vboard_log_clear) log_clear;
    decltype(&::vboard_fail_access) fail_access;
    decltype(&::vboard_access_count) access_count;
    decltype(&::vboard_fail_name) fail_name;
    decltype(&::vboard_on_access) on_access;
    decltype(&::vboard_answer) answer;
    decltype(&::vboard_last_error) last_error;
    decltype(&::vboard_attach_applet) attach_applet;
    decltype(&::vboard_raise_event) raise_event;
    decltype(&::vboard_poke_int) poke_int;
    decltype(&::vboard_poke_after_read) poke_after_read;
    decltype(&::vboard_poke_double) poke_double;
    decltype(&::vboard_poke_text) poke_text;
    decltype(&::vboard_peek_int) peek_int;
    decltype(&::vboard_peek_double) peek_double;
    decltype(&::vboard_peek_field) peek_field;
};

/** What opens a board and lets it go again. */
struct BoardOpener {
    LOOMdevice* (*open)() = nullptr; /**< null when there is no board */
    void (*close)(LOOMdevice* board) = nullptr;
};

/** Where the libraries are. */
struct Locations {
    std::filesystem::path applet;       /**< libGrab_TwinLaneLineColor.so */
    std::filesystem::path virtualBoard; /**< folder of the virtual board's libraries; empty: the platform
                                             libraries that the dynamic loader finds by their names */
    std::filesystem::path bridge{};     /**< library that opens a board of those, by the functions
                                             bridge_open_board and bridge_close_board of a BoardOpener's types;
                                             empty: the board library does by itself, as the virtual one */

    /** Beside the running program: ../lib/ and ../lib/virtual-board/ of its folder. The environment variable
     *  APPLET_UNDER_TEST, if set, names another applet library. */
    static Locations beside();
};

/** The loaded libraries. They stay loaded for the life of the object. Opens the platform's libraries first,
 * libvexo_hw.so, libtslrt.so, libgrabcore5.so, the virtual board's by absolute path, then the applet. Throws
 * HostError. */
class AppletHost {
public:
    explicit AppletHost(const Locations& where = Locations::beside());
    ~AppletHost();
    AppletHost(const AppletHost&) = delete;
    AppletHost& operator=(const AppletHost&) = delete;

    const AppletFunctions& applet() const { return m_applet; }
    /** Of the virtual board; all null on another one. */
    const BoardFunctions& board() const { return m_board; }
    bool isVirtual() const { return m_board.open != nullptr; }
    const BoardOpener& opener() const { return m_opener; }
    /** The files that were loaded: the platform's three in the order above, then the applet. */
    std::vector<std::filesystem::path> files() const;

private:
    void bindBoard(const Locations& where);
    void close();

    void* m_libraries[4] = {};
    void* m_bridge = nullptr;
    AppletFunctions m_applet{};
    BoardFunctions m_board{};
    BoardOpener m_opener;
};

/** A caller's handle as the runtime makes it: the first word is the applet's object. */
struct GrabberHandle {
    void* object = nullptr;
    Fg_Struct* fg() { return reinterpret_cast<Fg_Struct*>(this); }
};

/** Called with the board of a session before its handle is brought up. */
using Prepare = std::function<void(LOOMdevice*)>;

/** One board with one brought-up handle; freed in the destructor. `error` is Std_entry's code. */
class Session {
public:
    Session(const AppletHost& host, int flags = 0, const Prepare& prepare = {});
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    const AppletHost& host;
    LOOMdevice* device;
    int error = 0;
    GrabberHandle handle;
    Fg_Struct* fg() { return handle.fg(); }
};

} // namespace applet_host

#endif
