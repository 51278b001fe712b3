/** One board: dispatches every access to its parts. */
#ifndef VIRTUAL_BOARD_BOARD_BOARD_H
#define VIRTUAL_BOARD_BOARD_BOARD_H

#include "vexo/board_access.h"
#include "virtual_board/board/AccessLog.h"
#include "virtual_board/board/Acquisition.h"
#include "virtual_board/board/Design.h"
#include "virtual_board/board/Events.h"
#include "virtual_board/board/Faults.h"
#include "virtual_board/board/Mutex.h"
#include "virtual_board/board/Values.h"
#include "virtual_board/virtual_board.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vboard {

class BoardStation;

/** The applet that configuration files are saved from and loaded into. */
struct AttachedApplet {
    Fg_Struct* fg = nullptr;
    vboard_config_function* save = nullptr;
    vboard_config_function* load = nullptr;
};

/** Observer called before each access. */
struct Watcher {
    vboard_access_function* function = nullptr;
    void* context = nullptr;
};

/**
 * Every access takes the same steps: call the watcher, check for a fault, perform it, log it. One mutex
 * guards the board and its handles, so there is no lock order to keep. No function of the host runs while it
 * is held. Results are 0 or a code of fg_errors.h, or the code of an injected fault.
 */
class Board {
public:
    Board();
    ~Board();
    Board(const Board&) = delete;
    Board& operator=(const Board&) = delete;

    /* Functions of the runtime. Tag 0: the parameter's own. A text fetched with FG_PARAM_ALLOCATED_STRING is
     * allocated with new char[]. */
    int set(const Design& design, int id, const void* value, int dma, int tag) EXCLUDES(m_mutex);
    int get(const Design& design, int id, void* value, int dma, int tag) EXCLUDES(m_mutex);
    int resolve(const Design& design, const char* name) EXCLUDES(m_mutex);
    int lastError() EXCLUDES(m_mutex);
    /** Saves or loads a file with a function of the attached applet. Holds no lock during the call. */
    int configure(int function, vboard_config_function* AttachedApplet::*which, const char* file)
        EXCLUDES(m_mutex);
    /** Any other function of the runtime: performs it, unless a fault or a forced answer replaces it. */
    std::int64_t call(int function, const std::function<std::int64_t()>& perform) EXCLUDES(m_mutex);

    int readRegister(int id, std::uint64_t* value) EXCLUDES(m_mutex);
    int writeRegister(int id, std::uint64_t value) EXCLUDES(m_mutex);

    /* Inside `call` only. */
    /** Without a memory pictures are only counted; with one, the station produces them. */
    int startAcquisition(int dma, std::int64_t pictures, const void* memory) REQUIRES(m_mutex);
    int stopAcquisition(int dma) REQUIRES(m_mutex);
    std::int64_t picture() REQUIRES(m_mutex);
    std::int64_t nextPicture() REQUIRES(m_mutex);
    /** Releases the mutex in between: with the wall clock while it sleeps, with stepped time between two pieces. */
    std::int64_t waitForPicture(std::int64_t picture, int seconds) REQUIRES(m_mutex);
    /** The same for pictures of the station only, with a timeout in ticks. */
    std::int64_t waitInStation(std::int64_t picture, std::uint64_t ticks) REQUIRES(m_mutex);
    /** One of the states from VBOARD_STATUS_TICK on. */
    std::int64_t stationStatus(int what) REQUIRES(m_mutex);

    /* Control. */
    void reset() EXCLUDES(m_mutex);
    void setWatcher(const Watcher& watcher) EXCLUDES(m_mutex);
    void setLastError(int code) EXCLUDES(m_mutex);
    void attachApplet(const AttachedApplet& applet) EXCLUDES(m_mutex);

    /* The parts. */
    Values& values() REQUIRES(m_mutex) { return m_values; }
    Faults& faults() REQUIRES(m_mutex) { return m_faults; }
    AccessLog& log() REQUIRES(m_mutex) { return m_log; }
    Acquisition& acquisition() REQUIRES(m_mutex) { return m_acquisition; }
    Events& events() REQUIRES(m_mutex) { return m_events; }
    /** The station, created on first use. */
    BoardStation& station() REQUIRES(m_mutex);
    /** Why the last insert of a debug point injected no image; empty if it did. */
    std::string insertTrouble() const REQUIRES(m_mutex);
    /** Advances the station's time to the wall clock, if it follows it. */
    void followClock() noexcept REQUIRES(m_mutex);
    /** Updates the parameters that show the state of acquisition and station. */
    void publishAcquisition() REQUIRES(m_mutex);

    /* The host's memories created for this board. */
    void addMemory(const vboard_frames& memory) REQUIRES(m_mutex);
    void removeMemory(const vboard_frames& memory) REQUIRES(m_mutex);

    /** Also guards the handles of the board. */
    Mutex& mutex() RETURN_CAPABILITY(m_mutex) { return m_mutex; }

    /** A board exists until it is closed and its last handle is freed. */
    void hold() { ++m_holders; }
    void release();

private:
    /** Holds the mutex for an access. The watcher is called first, without the mutex. */
    class SCOPED_CAPABILITY AccessLock {
    public:
        AccessLock(Board& board, int kind) ACQUIRE(board.m_mutex);
        ~AccessLock() RELEASE();
        AccessLock(const AccessLock&) = delete;
        AccessLock& operator=(const AccessLock&) = delete;

    private:
        Mutex& m_held;
    };

    /** Counts the access. Returns the code with which it must fail, or 0. */
    int faultOf(const Access& access) REQUIRES(m_mutex);
    /** Logs the access; the text, if any, is its value. Returns `code`. */
    int finish(Access access, int code, const char* text = nullptr) REQUIRES(m_mutex);

    Live m_live{Live::boards};
    std::atomic<int> m_holders{1};
    Mutex m_mutex; // the members below, and the handles

    Values m_values GUARDED_BY(m_mutex);
    Faults m_faults GUARDED_BY(m_mutex);
    AccessLog m_log GUARDED_BY(m_mutex);
    Acquisition m_acquisition GUARDED_BY(m_mutex);
    Events m_events GUARDED_BY(m_mutex);
    std::unique_ptr<BoardStation> m_station GUARDED_BY(m_mutex);
    bool m_isImaging GUARDED_BY(m_mutex) = false;         // the last acquisition was one of the station
    std::uint64_t m_acquisitions GUARDED_BY(m_mutex) = 0; // started so far
    std::vector<const vboard_frames*> m_memories GUARDED_BY(m_mutex);
    Watcher m_watcher GUARDED_BY(m_mutex);
    std::optional<int> m_forcedError GUARDED_BY(m_mutex);
    int m_lastError GUARDED_BY(m_mutex) = 0;
    AttachedApplet m_applet GUARDED_BY(m_mutex);
};

} // namespace vboard

/** The platform's handle of a board. */
struct LOOMdevice final : vboard::Board {};

#endif
