// Opening and closing stations.

#include "applet_host/AppletHost.h"
#include "applet_tools/base/BoardOptions.h"
#include "applet_tools/base/text.h"
#include "applet_tools/station/StationFile.h"
#include "host/Station.h"
#include "host/set_up.h"

#include <cstdlib>
#include <optional>

using namespace host;

namespace {

std::mutex opening; // held while a station of the process is opened or closed

applet_tools::BoardOptions boardOptionsOf(const vexo_options& options) {
    applet_tools::BoardOptions board;
    if (options.board == VEXO_SYSTEM) board.board = applet_tools::BoardKind::system;
    board.offline = options.board == VEXO_OFFLINE;
    board.look = (options.flags & VEXO_LOOK) != 0;
    board.takesStationOfEnvironment = false; // see SetUp
    if (options.applet != nullptr) board.applet = options.applet;
    if (options.bridge != nullptr) board.bridge = options.bridge;
    const std::filesystem::path here = applet_host::folderOfThisCode();
    std::error_code ignored;
    const bool isInstalled = std::filesystem::exists(here / "vexo" / "vexo-scratch", ignored);
    board.scratchProgram = (isInstalled ? here / "vexo" : here) / "vexo-scratch";
    return board;
}

void check(const vexo_options& options) {
    if (options.size != sizeof(vexo_options))
        throw Error(VEXO_ERR_ARGUMENT, "the member size of the options is " + std::to_string(options.size) +
                                           ": sizeof(vexo_options) is " +
                                           std::to_string(sizeof(vexo_options)) + " in this version");
    if (options.board < VEXO_VIRTUAL || options.board > VEXO_SYSTEM)
        throw Error(VEXO_ERR_ARGUMENT, "there is no kind of board " + std::to_string(options.board) +
                                           "; VEXO_VIRTUAL, VEXO_OFFLINE and VEXO_SYSTEM are 0, 1 and 2");
    if ((options.flags & ~std::uint32_t{VEXO_LOOK | VEXO_NO_ADVICE}) != 0)
        throw Error(VEXO_ERR_ARGUMENT, "the flags are " + std::to_string(options.flags) +
                                           ", which has bits beyond VEXO_LOOK and VEXO_NO_ADVICE");
    if (options.station != nullptr && options.board != VEXO_VIRTUAL)
        throw Error(VEXO_ERR_NOT_VIRTUAL, "a station file is for a virtual board");
}

/** The station file of the options, or else of the environment. It is read before a board is opened. */
class SetUp {
public:
    explicit SetUp(const vexo_options& options) {
        if (options.board != VEXO_VIRTUAL) return;
        const char* const variable = "VBOARD_STATION";
        const char* const named = options.station == nullptr ? std::getenv(variable) : nullptr;
        if (named != nullptr) m_subject = variable;
        if (const char* const name = named != nullptr ? named : options.station)
            m_file = about(m_subject, [&] { return readStation(name); });
    }

    void apply(vexo_station& station) {
        if (!m_file) return;
        const bool isForAll = !m_subject.empty(); // also for read-only stations
        if (isForAll && station.onlyLooks) m_file->parameters.clear();
        about(m_subject, [&] { setUp(station, *m_file); });
    }

private:
    std::string m_subject; // prefix of error messages: the variable's name if it supplied the file
    std::optional<applet_tools::StationFile> m_file;
};

/** Chooses the library folder of the process; after a failed opening the choice is undone. */
class LibraryFolder {
public:
    explicit LibraryFolder(const char* wanted)
        : m_isNew(applet_host::chooseFolder(wanted != nullptr ? wanted : applet_host::libraryFolder())) {}
    ~LibraryFolder() {
        if (m_isNew) applet_host::forgetFolder();
    }
    LibraryFolder(const LibraryFolder&) = delete;
    LibraryFolder& operator=(const LibraryFolder&) = delete;
    void keep() { m_isNew = false; }

private:
    bool m_isNew;
};

/** Returns an information text of the applet; needs no instance. */
std::string textOf(const vexo_station& station, FgInfoCode code) {
    const char* text = nullptr;
    station.instance.applet().Info(code, 0, 0, nullptr, &text);
    return applet_tools::toUtf8(text);
}

} // namespace

const char* vexo_version() { return VEXO_VERSION; }

void vexo_free(char* text) { std::free(text); }

int vexo_open(const vexo_options* options, vexo_station** station) {
    if (station == nullptr) return failNull("the pointer for the station");
    *station = nullptr;
    return guarded([&] {
        vexo_options standard{};
        standard.size = sizeof standard;
        const vexo_options& chosen = options != nullptr ? *options : standard;
        check(chosen);
        const std::lock_guard lock(opening);
        SetUp stationFile(chosen); // reads the environment before the opening changes it
        LibraryFolder folder(chosen.library_dir);
        auto opened =
            std::make_unique<vexo_station>(boardOptionsOf(chosen), (chosen.flags & VEXO_NO_ADVICE) == 0);
        stationFile.apply(*opened);
        folder.keep();
        *station = opened.release();
        return VEXO_OK;
    });
}

void vexo_close(vexo_station* station) {
    const std::lock_guard lock(opening);
    delete station;
}

int vexo_info(vexo_station* station, char** json) {
    if (json == nullptr) return failNull("the pointer for the document");
    return onLocked(station, [&](vexo_station& own) {
        nlohmann::ordered_json document = {
            {"version", VEXO_VERSION},
            {"board", own.board},
            {"applet", {{"name", textOf(own, FG_INFO_NAME)}, {"version", textOf(own, FG_INFO_VERSION)}}},
            {"files", nlohmann::ordered_json::array()},
            {"parameters", own.table.rows().size()},
            {"notes", own.live.takeNotes()}};
        for (const std::filesystem::path& file : own.instance.host()->files())
            document["files"].push_back(file.string());
        *json = copyOf(document.dump());
    });
}
