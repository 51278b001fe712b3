/** The record of what reached a board, in order, and the faults that are due. */
#ifndef VIRTUAL_BOARD_ACCESS_LOG_H
#define VIRTUAL_BOARD_ACCESS_LOG_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <unordered_map>

namespace vboard {

/** One access. Cheap to note; the line is made when somebody asks. */
struct Access {
    unsigned kind;          // VBOARD_SET, ...
    const char* name;       // of the parameter, register or function; lives as long as the process
    int type = 0;           // tag, or width of a register in bits
    std::uint64_t bits = 0; // the value as it was handed over; first element and count of a field
    std::string text = {};  // texts, and names that nobody knows
    int result = 0;
};

/** The line of an access, as virtual_board.h describes it. */
std::string lineOf(const Access& access);

/** Keeps the last million accesses. */
class AccessLog {
public:
    bool heeds(unsigned kind) const { return (m_kinds & kind) != 0; }
    void setKinds(unsigned kinds) { m_kinds = kinds; }
    void add(Access access);
    void clear() { m_accesses.clear(); }
    std::size_t size() const { return m_accesses.size(); }
    const Access& at(std::size_t index) const { return m_accesses[index]; }

private:
    static constexpr std::size_t mostAccesses = 1'000'000;
    unsigned m_kinds = 1 | 2 | 4 | 8;
    std::deque<Access> m_accesses;
};

/** Faults that were asked for. */
class Faults {
public:
    void failAccess(unsigned k, int code, bool fromThenOn);
    void failName(const std::string& name, int code);
    /** Counts an access and gives the code with which it fails, or 0. */
    int next(const char* name);
    unsigned count() const { return m_count; }

private:
    unsigned m_count = 0;
    unsigned m_failing = 0; // number of the access that fails; 0: none
    int m_code = 0;
    bool m_fromThenOn = false;
    std::unordered_map<std::string, int> m_byName;
};

} // namespace vboard

#endif
