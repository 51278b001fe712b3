/** One board: the values that it holds, its faults and its log. */
#ifndef VIRTUAL_BOARD_BOARD_H
#define VIRTUAL_BOARD_BOARD_H

#include "AccessLog.h"
#include "Design.h"
#include "design_tables.h"
#include "vexo/board_access.h"
#include "virtual_board.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
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
 * Every access goes the same way: tell of it, is it to fail, else do it, then log it. One mutex serves the
 * whole board.
 * Results are 0 or a code of fg_errors.h, or the one that a fault asks for.
 */
class Board {
public:
    Board();
    Board(const Board&) = delete;
    Board& operator=(const Board&) = delete;

    /* What the runtime does. Tag 0: the parameter's own. A text fetched with FG_PARAM_ALLOCATED_STRING is
     * made with new char[]. */
    int set(const Design& design, int id, const void* value, int dma, int tag);
    int get(const Design& design, int id, void* value, int dma, int tag);
    int resolve(const Design& design, const char* name);
    int lastError();
    /**
     * Saving or loading a file: `function` of the applet that is attached, with nothing of the board held.
     */
    int configure(int function, vboard_config_function* AttachedApplet::*which, const char* file);
    /** Any other function of the runtime: performs it, unless a fault or a forced answer takes its place. */
    std::int64_t call(int function, const std::function<std::int64_t()>& perform);

    int readRegister(int id, std::uint64_t* value);
    int writeRegister(int id, std::uint64_t value);

    /* The acquisition, inside `call` only. Pictures count from 1; 0 or less to be taken: without end. */
    int startAcquisition(int dma, std::int64_t pictures);
    int stopAcquisition(int dma);
    std::int64_t picture() const { return m_picture; }
    std::int64_t nextPicture();
    std::int64_t waitForPicture(std::int64_t picture);

    /** Inside `call` too: how often the events of a mask were raised since they were last asked for. */
    std::int64_t takeEvents(const Design& design, std::uint64_t mask);

    /* Control. */
    void reset();
    void setLogKinds(unsigned mask);
    std::size_t logSize();
    std::optional<std::string> logLine(std::size_t index);
    void clearLog();
    void failAccess(unsigned k, int code, bool fromThenOn);
    unsigned accessCount();
    bool failName(std::string_view name, int code);
    void setWatcher(const Watcher& watcher);
    void setAnswer(int function, std::int64_t value);
    void setLastError(int code);
    void attachApplet(const AttachedApplet& applet);
    bool raiseEvent(const char* name);
    bool poke(std::string_view name, Type type, std::uint64_t bits);
    /** An integer that takes the value's place when it is read next. */
    bool pokeAfterRead(std::string_view name, std::uint64_t number);
    bool pokeText(std::string_view name, const char* text);
    bool peek(std::string_view name, Type type, std::uint64_t& bits);
    bool peekField(std::string_view name, std::uint32_t first, std::uint32_t count, std::uint32_t* values);

    /* Present value of a row of the parameters. */
    std::uint64_t number(int row);
    std::string text(int row);

    /** A board stays until it is closed and its last handle is freed. */
    void hold() { ++m_holders; }
    void release();

private:
    void putStartValues();
    void changeAcquisition(bool running);

    /** Takes the board for an access, once the host was told of it. */
    std::unique_lock<std::mutex> enter(int kind);
    /** An access of what `id` leads to in this design; its row is -1 if that is nothing. */
    Access beginAccess(int kind, const Design& design, int id, int tag) const;
    Access beginRegister(int kind, int id) const;
    /** Counts the access. The code with which it is to fail, or 0. */
    int faultOf(const Access& access);
    /** Logs the access; the text, if there is one, is its value. Gives back `code`. */
    int finish(Access access, int code, const char* text = nullptr);

    int store(const Access& access, const void* value);
    int fetch(Access& access, void* value, const char*& text);
    int storeField(const Access& access, const void* value);
    int fetchField(Access& access, void* value);
    std::vector<std::uint32_t>& fieldOf(std::size_t row);
    std::uint64_t* numberCalled(std::string_view name, Type& type);

    Live m_live{Live::boards};
    std::atomic<int> m_holders{1};
    std::mutex m_mutex; // guards all that follows

    std::vector<std::uint64_t> m_numbers;             // by row of the parameters, as the three below
    std::vector<std::string> m_texts;                 // of numbers: empty
    std::vector<std::vector<std::uint32_t>> m_fields; // empty until it is written: all zeros
    std::vector<int> m_failingParameters;
    std::map<std::size_t, std::uint64_t> m_afterRead; // by row too: what takes the number's place
    std::vector<std::uint64_t> m_registers;           // by row of the registers, as the one below
    std::vector<int> m_failingRegisters;

    unsigned m_kinds;
    AccessLog m_log;
    unsigned m_accessCount = 0;
    unsigned m_failingAccess = 0; // 0: none
    int m_failingCode = 0;
    bool m_failFromThenOn = false;
    Watcher m_watcher;

    std::array<std::optional<std::int64_t>, std::size(runtimeEntries)> m_answers;
    std::optional<int> m_forcedError;
    int m_lastError = 0;
    AttachedApplet m_applet;

    std::map<std::string, std::int64_t, std::less<>> m_raisedEvents;
    bool m_acquiring = false;
    std::int64_t m_picture = 0;
    std::int64_t m_pictures = 0;
};

} // namespace vboard

/** The platform's handle of a board. */
struct LOOMdevice final : vboard::Board {};

#endif
