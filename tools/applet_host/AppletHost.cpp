#include "applet_host/AppletHost.h"

#include "applet_host/library_file.h"

#include <dlfcn.h>
#include <link.h>
#include <strings.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <span>
#include <string>

namespace applet_host {
namespace {

/** A row of a binding table: the function's name in the library and where its pointer is stored. */
struct Binding {
    const char* name;
    std::size_t offset;
};

constexpr Binding appletBindings[] = {
#define APPLET_FUNCTION(name) {#name, offsetof(AppletFunctions, name)},
#define OTHER_FUNCTION(name, arguments) APPLET_FUNCTION(name)
#include "applet_host/applet_functions.def"
#undef APPLET_FUNCTION
#undef OTHER_FUNCTION
};

constexpr Binding boardBindings[] = {
#define BOARD_FUNCTION(name) {"vboard_" #name, offsetof(BoardFunctions, name)},
#include "applet_host/board_functions.def"
#undef BOARD_FUNCTION
};

constexpr Binding bridgeBindings[] = {
    {"bridge_open_board", offsetof(BoardOpener, open)},
    {"bridge_close_board", offsetof(BoardOpener, close)},
};

constexpr const char* boardLibraries[] = {"libvexo_hw.so", "libtslrt.so", "libgrabcore5.so"};
constexpr const char* appletLibrary = "libGrab_TwinLaneLineColor.so";

/** The last error message of the dynamic loader. */
std::string loaderError() {
    const char* text = dlerror();
    return text != nullptr ? text : "the dynamic loader gives no reason";
}

/** The file that a library was loaded from. */
std::filesystem::path fileOf(void* library) {
    link_map* entry = nullptr;
    if (dlinfo(library, RTLD_DI_LINKMAP, &entry) != 0) return {};
    return entry->l_name;
}

/** The file of the library of that name that the process has loaded; empty if it has none. */
std::filesystem::path loadedFile(const char* name) {
    void* const library = dlopen(name, RTLD_LAZY | RTLD_NOLOAD);
    if (library == nullptr) return {};
    std::filesystem::path file = fileOf(library);
    dlclose(library);
    return file;
}

bool isSameFile(const std::filesystem::path& one, const std::filesystem::path& other) {
    std::error_code ignored;
    return std::filesystem::equivalent(one, other, ignored);
}

/** The names of the libraries are the same for all boards, and the applet takes those that were loaded first. */
[[noreturn]] void throwOtherBoard(const std::filesystem::path& loaded, const char* what) {
    throw HostError(
        "this process uses " + loaded.string() + ", and " + what +
        " cannot be opened beside it: a process has either virtual boards or those of the system; "
        "close the other one before, or use another process");
}

/** The folders that the dynamic loader searches for libraries, except those of its cache. */
std::vector<std::filesystem::path> searchedFolders() {
    std::vector<std::filesystem::path> folders;
    void* const program = dlopen(nullptr, RTLD_LAZY);
    Dl_serinfo size{};
    if (dlinfo(program, RTLD_DI_SERINFOSIZE, &size) == 0) {
        std::vector<std::max_align_t> buffer(size.dls_size / sizeof(std::max_align_t) + 1);
        auto* const info = reinterpret_cast<Dl_serinfo*>(buffer.data());
        *info = size;
        if (dlinfo(program, RTLD_DI_SERINFO, info) == 0)
            for (unsigned i = 0; i < info->dls_cnt; ++i)
                folders.emplace_back(info->dls_serpath[i].dls_name);
    }
    dlclose(program);
    return folders;
}

/** The virtual board's own library; not a virtual board on the path of the dynamic loader. */
bool isOfVirtualBoard(const std::filesystem::path& file) {
    return isSameFile(file, Locations::beside().virtualBoard / file.filename());
}

/** A library that the dynamic loader finds by name. */
void* openByName(const char* name) {
    std::filesystem::path found;
    std::error_code error;
    for (const std::filesystem::path& folder : searchedFolders()) {
        if (!std::filesystem::exists(folder / name, error)) continue;
        found = folder / name;
        const std::string trouble = troubleWithLibrary(found);
        if (!trouble.empty())
            throw HostError("the library " + found.string() + " cannot be loaded: " + trouble);
        break;
    }
    const std::filesystem::path loaded = loadedFile(name);
    if (!loaded.empty() && isOfVirtualBoard(loaded) && !isSameFile(loaded, found))
        throwOtherBoard(loaded, "a board of the system");
    if (void* library = dlopen(name, RTLD_NOW | RTLD_LOCAL)) return library;
    throw HostError(std::string("the library ") + name +
                    " is not on the path of the dynamic loader: " + loaderError());
}

/** The absolute path of a library that is there. */
std::filesystem::path existing(const std::filesystem::path& path) {
    std::error_code error;
    std::filesystem::path file = std::filesystem::absolute(path, error);
    if (error || !std::filesystem::exists(file, error)) {
        throw HostError("the library " + file.filename().string() + " was looked for in " +
                        file.parent_path().string() + ", and there is none");
    }
    return file;
}

void* openLibrary(const std::filesystem::path& path) {
    const std::filesystem::path file = existing(path);
    std::string reason = troubleWithLibrary(file);
    if (reason.empty()) {
        if (void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) return library;
        reason = loaderError();
    }
    throw HostError("the library " + file.filename().string() + " in " + file.parent_path().string() +
                    " cannot be loaded: " + reason);
}

/** A library of the virtual board. */
void* openVirtual(const std::filesystem::path& path) {
    const std::filesystem::path loaded = loadedFile(path.filename().c_str());
    std::error_code error;
    if (!loaded.empty() && std::filesystem::exists(path, error) && !isSameFile(loaded, path))
        throwOtherBoard(loaded, "a virtual board");
    return openLibrary(path);
}

/** The installation that contains the applet's file. The applet looks for the logging dispatcher there. */
std::filesystem::path sdkDirectoryOf(const std::filesystem::path& applet) {
    constexpr const char* folders[] = {"bin", "dll", "Hardware Applets", "lib", "lib64"};
    std::error_code error;
    std::filesystem::path folder = std::filesystem::absolute(applet, error).parent_path();
    for (; folder.has_relative_path(); folder = folder.parent_path())
        if (std::ranges::any_of(
                folders, [&](const char* name) { return strcasecmp(folder.filename().c_str(), name) == 0; }))
            return folder.parent_path();
    const char* directory = std::getenv("NORVANE_FG_SDK_DIR");
    return directory != nullptr ? directory : "";
}

/** The applet opens the dispatcher when it first logs; a truncated file would end the process then. */
void requireWholeDispatcher(const std::filesystem::path& applet) {
    const std::filesystem::path file = sdkDirectoryOf(applet) / "lib64" / "libcommon-logging-dispatcher.so";
    std::error_code error;
    if (!file.is_absolute() || !std::filesystem::exists(file, error)) return;
    const std::string trouble = troubleWithLibrary(file);
    if (!trouble.empty())
        throw HostError("the library " + file.string() +
                        ", which the applet logs through, cannot be loaded: " + trouble +
                        "; install it again, or remove it to run without a log");
}

/** Binds the functions of all rows to one library. */
template <typename Table>
void bindAll(void* library, const std::filesystem::path& path, std::span<const Binding> bindings,
             Table& table) {
    for (const Binding& binding : bindings) {
        void* function = dlsym(library, binding.name);
        if (function == nullptr) {
            throw HostError("the library " + path.string() + " lacks the function " + binding.name + ": " +
                            loaderError());
        }
        std::memcpy(reinterpret_cast<std::byte*>(&table) + binding.offset, &function, sizeof function);
    }
}

} // namespace

std::filesystem::path folderOfThisCode() {
    Dl_info info{};
    link_map* entry = nullptr;
    void* found = nullptr;
    const bool isKnown =
        dladdr1(reinterpret_cast<const void*>(&folderOfThisCode), &info, &found, RTLD_DL_LINKMAP) != 0;
    if (isKnown) entry = static_cast<link_map*>(found);
    // The program itself has no name in the loader's list.
    if (entry == nullptr || entry->l_name[0] == '\0')
        return std::filesystem::read_symlink("/proc/self/exe").parent_path();
    // The library may be a link from another folder.
    std::error_code error;
    const std::filesystem::path file = std::filesystem::canonical(entry->l_name, error);
    return (error ? std::filesystem::absolute(entry->l_name) : file).parent_path();
}

namespace {

/** The applet's file in a folder: in a build tree beside the other libraries, installed in a folder of its own. */
std::filesystem::path appletIn(const std::filesystem::path& folder) {
    std::error_code ignored;
    std::filesystem::path own = folder / "applets" / appletLibrary;
    return std::filesystem::exists(own, ignored) ? own : folder / appletLibrary;
}

/** The folder of the libraries as seen from this code, in a build tree or installed. */
std::filesystem::path nearestFolder() {
    const std::filesystem::path here = folderOfThisCode();
    const std::filesystem::path prefix = here.parent_path();
    std::error_code ignored;
    for (const std::filesystem::path& folder : {here, here / "vexo", prefix / APPLET_INSTALL_LIBDIR / "vexo"})
        if (std::filesystem::exists(appletIn(folder), ignored)) return folder;
    return prefix / "lib";
}

struct ChosenFolder {
    std::mutex mutex;
    std::filesystem::path path; // empty: none was chosen
};

ChosenFolder& chosenFolder() {
    static ChosenFolder ofProcess;
    return ofProcess;
}

} // namespace

std::filesystem::path libraryFolder() {
    {
        ChosenFolder& chosen = chosenFolder();
        const std::lock_guard lock(chosen.mutex);
        if (!chosen.path.empty()) return chosen.path;
    }
    const char* const named = std::getenv("VEXO_LIBRARY_DIR");
    if (named == nullptr) return nearestFolder();
    if (*named == '\0')
        throw HostError("VEXO_LIBRARY_DIR is empty: it names the folder of the libraries, or is unset");
    return named;
}

bool chooseFolder(const std::filesystem::path& folder) {
    const std::filesystem::path wanted = std::filesystem::weakly_canonical(folder);
    ChosenFolder& chosen = chosenFolder();
    const std::lock_guard lock(chosen.mutex);
    if (!chosen.path.empty() && chosen.path != wanted)
        throw HostError("this process uses the libraries of " + chosen.path.string() +
                        ", and cannot load those of " + wanted.string() + " as well");
    const bool isNew = chosen.path.empty();
    chosen.path = wanted;
    return isNew;
}

void forgetFolder() {
    ChosenFolder& chosen = chosenFolder();
    const std::lock_guard lock(chosen.mutex);
    chosen.path.clear();
}

Locations Locations::beside() {
    const std::filesystem::path folder = libraryFolder();
    Locations where{appletIn(folder), folder / "virtual-board"};
    if (const char* underTest = std::getenv("APPLET_UNDER_TEST")) where.applet = underTest;
    return where;
}

AppletHost::AppletHost(const Locations& where) {
    if (where.applet.empty())
        throw HostError(
            "the environment variable APPLET_UNDER_TEST is empty: let it name the applet's library, or "
            "unset it");
    existing(where.applet); // without it, the folder of the others is a wrong one, too
    try {
        void** next = m_libraries;
        for (const char* name : boardLibraries)
            *next++ = where.virtualBoard.empty() ? openByName(name) : openVirtual(where.virtualBoard / name);
        *next = openLibrary(where.applet);
        requireWholeDispatcher(where.applet);
        bindBoard(where);
        bindAll(m_libraries[3], where.applet, appletBindings, m_applet);
    } catch (...) {
        close();
        throw;
    }
}

void AppletHost::bindBoard(const Locations& where) {
    if (!where.virtualBoard.empty() || dlsym(m_libraries[0], "vboard_open") != nullptr) {
        bindAll(m_libraries[0], where.virtualBoard / boardLibraries[0], boardBindings, m_board);
        m_opener = {m_board.open, m_board.close};
        return;
    }
    if (where.bridge.empty()) {
        throw HostError(
            "the library " + fileOf(m_libraries[0]).string() +
            " opens no board by itself: name a library that opens one for it (--bridge FILE, with "
            "the functions bridge_open_board and bridge_close_board)");
    }
    m_bridge = openLibrary(where.bridge);
    bindAll(m_bridge, where.bridge, bridgeBindings, m_opener);
}

std::vector<std::filesystem::path> AppletHost::files() const {
    std::vector<std::filesystem::path> files;
    for (void* library : m_libraries)
        files.push_back(fileOf(library));
    return files;
}

AppletHost::~AppletHost() { close(); }

void AppletHost::close() {
    if (m_bridge != nullptr) dlclose(m_bridge);
    m_bridge = nullptr;
    // Unload the applet first, as it uses the other three.
    for (std::size_t i = std::size(m_libraries); i-- > 0;) {
        if (m_libraries[i] != nullptr) dlclose(m_libraries[i]);
        m_libraries[i] = nullptr;
    }
}

Session::Session(const AppletHost& libraries, int flags, const Prepare& prepare)
    : host(libraries)
    , device(libraries.opener().open()) {
    if (prepare) prepare(device);
    handle.object = host.applet().Std_entry(device, &error, flags);
    if (host.isVirtual())
        host.board().attach_applet(device, fg(), host.applet().Fg_saveConfig, host.applet().Fg_loadConfig);
}

Session::~Session() {
    if (handle.object != nullptr) host.applet().Fg_FreeGrabber(handle.fg());
    host.opener().close(device);
}

} // namespace applet_host
