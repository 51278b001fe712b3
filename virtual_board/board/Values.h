/** State of a board: the values of the design's parameters and of the registers. */
#ifndef VIRTUAL_BOARD_BOARD_VALUES_H
#define VIRTUAL_BOARD_BOARD_VALUES_H

#include "virtual_board/board/AccessLog.h"
#include "virtual_board/tables/design_tables.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vboard {

/**
 * An access returns 0 or a code of fg_errors.h; the control functions return false for a name that is unknown
 * or of another kind. The caller holds the board's mutex.
 */
class Values {
public:
    Values() { reset(); }
    /** Restores the start values. */
    void reset();

    /** Puts what a set would store into the access, for the log; returns a text. Pointers may be null. */
    static const char* describe(Access& access, const void* value);
    /** Stores the value of a parameter; a number is taken from the access. */
    int store(const Access& access, const void* value);
    /** Copies the value to caller and access; a text goes to `text` and is valid until the value changes. */
    int fetch(Access& access, void* value, const char*& text);
    int storeRegister(const Access& access);
    int fetchRegister(Access& access, std::uint64_t* value);

    /* Current value of a row of the parameters. */
    std::uint64_t number(int row) const;
    const std::string& text(int row) const;
    void setNumber(int row, std::uint64_t number);
    /** Elements of an array; empty until it is written, which means zeros. */
    const std::vector<std::uint32_t>& field(int row) const;

    /** A number that changes with each write or poke, also of arrays. setNumber does not change it. */
    std::uint64_t revision() const { return m_revision; }
    std::uint64_t tableRevision() const { return m_tableRevision; }

    /* Control: bypasses every check. */
    bool poke(std::string_view name, Type type, std::uint64_t bits);
    /** An integer that replaces the value after the next read. */
    bool pokeAfterRead(std::string_view name, std::uint64_t number);
    bool pokeText(std::string_view name, const char* text);
    bool peek(std::string_view name, Type type, std::uint64_t& bits);
    bool peekField(std::string_view name, std::uint32_t first, std::uint32_t count, std::uint32_t* values);

private:
    int storeField(const Access& access, const void* value);
    int fetchField(Access& access, void* value) const;
    std::vector<std::uint32_t>& fieldOf(std::size_t row);
    /** The number of a parameter or register, and its type; null if the name is unknown. */
    std::uint64_t* findNumber(std::string_view name, Type& type);

    // By row of the parameters.
    std::vector<std::uint64_t> m_numbers;
    std::vector<std::string> m_texts;                 // empty for numbers
    std::vector<std::vector<std::uint32_t>> m_fields; // empty until written: zeros
    std::map<std::size_t, std::uint64_t> m_afterRead; // replaces the number after it is read
    std::uint64_t m_revision = 0;
    std::uint64_t m_tableRevision = 0;
    // By row of the registers.
    std::vector<std::uint64_t> m_registers;
};

} // namespace vboard

#endif
