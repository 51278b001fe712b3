/**
 * A host for the applet: loads the virtual board and the applet library and calls the library's exported
 * functions, as the grabber runtime would. appletctl, the tests and the benchmarks use it.
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

/** A library or function was not found; the text says which, where it was looked for, and why. */
struct HostError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/** The exported functions of the applet library, by name. */
struct AppletFunctions {
#define APPLET_FUNCTION(name) decltype(&::name) name;
#define OTHER_FUNCTION(name, arguments) int(*name) arguments;
#include "applet_host/applet_functions.def"
#undef APPLET_FUNCTION
#undef OTHER_FUNCTION
};

/** The control functions of the virtual board, by name (see virtual_board.h). */
struct BoardFunctions {
#define BOARD_FUNCTION(name) decltype(&::vboard_##name) name;
#include "applet_host/board_functions.def"
#undef BOARD_FUNCTION
};

/** Opens and closes a board. */
struct BoardOpener {
    LOOMdevice* (*open)() = nullptr; /**< returns null if there is no board */
    void (*close)(LOOMdevice* board) = nullptr;
};

/** Where the libraries are. */
struct Locations {
    std::filesystem::path applet;       /**< libGrab_TwinLaneLineColor.so */
    std::filesystem::path virtualBoard; /**< folder of the virtual board's libraries; if empty, the platform
                                             libraries that the dynamic loader finds by name */
    std::filesystem::path bridge{};     /**< library that opens a board of the system with the functions
                                             bridge_open_board and bridge_close_board (types as in BoardOpener);
                                             if empty, the board library opens it, as the virtual one does */

    /** The libraries of libraryFolder(): the applet in it or in its applets/, the virtual board's in its virtual-board/.
     *  The environment variable APPLET_UNDER_TEST, if set, names another applet library. */
    static Locations beside();
};

/** The folder that was chosen, or that the environment variable VEXO_LIBRARY_DIR names, or else the nearest one with an
 *  applet, as seen from this code: its own, vexo/ in it, or lib/ or the installed one beside it. */
std::filesystem::path libraryFolder();

/** Makes this folder the library folder of the process. The names of the libraries are the same in all folders, and a
 *  process can load only one of each: throws HostError if another folder was chosen before. True if none was. */
bool chooseFolder(const std::filesystem::path& folder);
/** Takes that back, if nothing could be loaded from there. */
void forgetFolder();

/** The folder of the program or library that contains this code. */
std::filesystem::path folderOfThisCode();

/** The loaded libraries. They stay loaded for the life of the object. Opens the platform's libraries first,
 * libvexo_hw.so, libtslrt.so, libgrabcore5.so, the virtual board's by absolute path, then the applet. Throws
 * HostError, also if the process has loaded libraries of these names from elsewhere. */
class AppletHost {
public:
    explicit AppletHost(const Locations& where = Locations::beside());
    ~AppletHost();
    AppletHost(const AppletHost&) = delete;
    AppletHost& operator=(const AppletHost&) = delete;

    const AppletFunctions& applet() const { return m_applet; }
    /** Control functions of the virtual board; all null for another board. */
    const BoardFunctions& board() const { return m_board; }
    bool isVirtual() const { return m_board.open != nullptr; }
    const BoardOpener& opener() const { return m_opener; }
    /** The loaded files: the three platform libraries in the order above, then the applet. */
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

/** A caller's handle as the runtime makes it: its first word points to the applet's object. */
struct GrabberHandle {
    void* object = nullptr;
    Fg_Struct* fg() { return reinterpret_cast<Fg_Struct*>(this); }
};

/** Called with the board of a session before the handle's bring-up. */
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
