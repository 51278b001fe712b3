/** One board: the values that it holds, its faults and its log. */
#ifndef VIRTUAL_BOARD_BOARD_H
#define VIRTUAL_BOARD_BOARD_H

#include "AccessLog.h"
#include "Design.h"
#include "Mutex.h"
#include "design_tables.h"
#include "runtime_entries.h"
#include "vexo/board_access.h"
#include "virtual_board.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vboard {

/** The applet as the runtime sees it from outside. */
struct AttachedApplet {
    Fg_Struct* fg = nullptr;
    vboard_config_function* save = nullptr;
    vboard_config_function* load = nullptr;
};

/** Who is told of an access before it happens. */
struct Watcher {
    vboard_access_function* function = nullptr;
    void* context = nullptr;
};

/**
 * Every access goes the same way: tell of it, is it to fail, else do it, then log it. One mutex guards the board
 * and its handles, so there is no order of locks to keep. No function of the host runs while it is held.
 * Results are 0 or a code of fg_errors.h, or the one that a fault asks for.
 */
class Board {
public:
    Board();
    Board(const Board&) = delete;
    Board& operator=(const Board&) = delete;

    /* What the runtime does. Tag 0: the parameter's own. A text fetched with FG_PARAM_ALLOCATED_STRING is
     * made with new char[]. */
    int set(const Design& design, int id, const void* value, int dma, int tag) EXCLUDES(m_mutex);
    int get(const Design& design, int id, void* value, int dma, int tag) EXCLUDES(m_mutex);
    int resolve(const Design& design, const char* name) EXCLUDES(m_mutex);
    int lastError() EXCLUDES(m_mutex);
    /**
     * Saving or loading a file: `function` of the applet that is attached, with nothing of the board held.
     */
    int configure(int function, vboard_config_function* AttachedApplet::*which, const char* file)
        EXCLUDES(m_mutex);
    /** Any other function of the runtime: performs it, unless a fault or a forced answer takes its place. */
    std::int64_t call(int function, const std::function<std::int64_t()>& perform) EXCLUDES(m_mutex);

    int readRegister(int id, std::uint64_t* value) EXCLUDES(m_mutex);
    int writeRegister(int id, std::uint64_t value) EXCLUDES(m_mutex);

    /* The acquisition, inside `call` only. Pictures count from 1; 0 or less to be taken: without end. */
    int startAcquisition(int dma, std::int64_t pictures) REQUIRES(m_mutex);
    int stopAcquisition(int dma) REQUIRES(m_mutex);
    std::int64_t picture() const REQUIRES(m_mutex) { return m_picture; }
    std::int64_t nextPicture() REQUIRES(m_mutex);
    std::int64_t waitForPicture(std::int64_t picture) REQUIRES(m_mutex);

    /** Inside `call` too: how often the events of a mask were raised since they were last asked for. */
    std::int64_t takeEvents(const Design& design, std::uint64_t mask) REQUIRES(m_mutex);

    /* Control. */
    void reset() EXCLUDES(m_mutex);
    void setLogKinds(unsigned mask) EXCLUDES(m_mutex);
    std::size_t logSize() EXCLUDES(m_mutex);
    std::optional<std::string> logLine(std::size_t index) EXCLUDES(m_mutex);
    void clearLog() EXCLUDES(m_mutex);
    void failAccess(unsigned k, int code, bool fromThenOn) EXCLUDES(m_mutex);
    unsigned accessCount() EXCLUDES(m_mutex);
    bool failName(std::string_view name, int code) EXCLUDES(m_mutex);
    void setWatcher(const Watcher& watcher) EXCLUDES(m_mutex);
    void setAnswer(int function, std::int64_t value) EXCLUDES(m_mutex);
    void setLastError(int code) EXCLUDES(m_mutex);
    void attachApplet(const AttachedApplet& applet) EXCLUDES(m_mutex);
    bool raiseEvent(const char* name) EXCLUDES(m_mutex);
    bool poke(std::string_view name, Type type, std::uint64_t bits) EXCLUDES(m_mutex);
    /** An integer that takes the value's place when it is read next. */
    bool pokeAfterRead(std::string_view name, std::uint64_t number) EXCLUDES(m_mutex);
    bool pokeText(std::string_view name, const char* text) EXCLUDES(m_mutex);
    bool peek(std::string_view name, Type type, std::uint64_t& bits) EXCLUDES(m_mutex);
    bool peekField(std::string_view name, std::uint32_t first, std::uint32_t count, std::uint32_t* values)
        EXCLUDES(m_mutex);

    /* Present value of a row of the parameters. */
    std::uint64_t number(int row) REQUIRES(m_mutex);
    std::string text(int row) REQUIRES(m_mutex);

    /** Guards the handles of the board too. */
    Mutex& mutex() RETURN_CAPABILITY(m_mutex) { return m_mutex; }

    /** A board stays until it is closed and its last handle is freed. */
    void hold() { ++m_holders; }
    void release();

private:
    void putStartValues() REQUIRES(m_mutex);
    void changeAcquisition(bool running) REQUIRES(m_mutex);

    /** Holds the board for an access, once the host was told of it. */
    class SCOPED_CAPABILITY AccessLock {
    public:
        AccessLock(Board& board, int kind) ACQUIRE(board.m_mutex);
        ~AccessLock() RELEASE();
        AccessLock(const AccessLock&) = delete;
        AccessLock& operator=(const AccessLock&) = delete;

    private:
        Mutex& m_held;
    };
    /** An access of what `id` leads to in this design; its row is -1 if that is nothing. */
    Access beginAccess(int kind, const Design& design, int id, int tag) const;
    Access beginRegister(int kind, int id) const;
    /** Counts the access. The code with which it is to fail, or 0. */
    int faultOf(const Access& access) REQUIRES(m_mutex);
    /** Logs the access; the text, if there is one, is its value. Gives back `code`. */
    int finish(Access access, int code, const char* text = nullptr) REQUIRES(m_mutex);

    int store(const Access& access, const void* value) REQUIRES(m_mutex);
    int fetch(Access& access, void* value, const char*& text) REQUIRES(m_mutex);
    int storeField(const Access& access, const void* value) REQUIRES(m_mutex);
    int fetchField(Access& access, void* value) REQUIRES(m_mutex);
    std::vector<std::uint32_t>& fieldOf(std::size_t row) REQUIRES(m_mutex);
    std::uint64_t* numberCalled(std::string_view name, Type& type) REQUIRES(m_mutex);

    Live m_live{Live::boards};
    std::atomic<int> m_holders{1};
    Mutex m_mutex; // the members below, and the handles

    // By row of the parameters.
    std::vector<std::uint64_t> m_numbers GUARDED_BY(m_mutex);
    std::vector<std::string> m_texts GUARDED_BY(m_mutex);                 // of numbers: empty
    std::vector<std::vector<std::uint32_t>> m_fields GUARDED_BY(m_mutex); // empty until it is written: zeros
    std::vector<int> m_failingParameters GUARDED_BY(m_mutex);
    // What takes the number's place after it is read.
    std::map<std::size_t, std::uint64_t> m_afterRead GUARDED_BY(m_mutex);
    // By row of the registers.
    std::vector<std::uint64_t> m_registers GUARDED_BY(m_mutex);
    std::vector<int> m_failingRegisters GUARDED_BY(m_mutex);

    unsigned m_kinds GUARDED_BY(m_mutex);
    AccessLog m_log GUARDED_BY(m_mutex);
    unsigned m_accessCount GUARDED_BY(m_mutex) = 0;
    unsigned m_failingAccess GUARDED_BY(m_mutex) = 0; // 0: none
    int m_failingCode GUARDED_BY(m_mutex) = 0;
    bool m_failFromThenOn GUARDED_BY(m_mutex) = false;
    Watcher m_watcher GUARDED_BY(m_mutex);

    std::array<std::optional<std::int64_t>, std::size(runtimeEntries)> m_answers GUARDED_BY(m_mutex);
    std::optional<int> m_forcedError GUARDED_BY(m_mutex);
    int m_lastError GUARDED_BY(m_mutex) = 0;
    AttachedApplet m_applet GUARDED_BY(m_mutex);

    std::map<std::string, std::int64_t, std::less<>> m_raisedEvents GUARDED_BY(m_mutex);
    bool m_acquiring GUARDED_BY(m_mutex) = false;
    std::int64_t m_picture GUARDED_BY(m_mutex) = 0;
    std::int64_t m_pictures GUARDED_BY(m_mutex) = 0;
};

} // namespace vboard

/** The platform's handle of a board. */
struct LOOMdevice final : vboard::Board {};

#endif
