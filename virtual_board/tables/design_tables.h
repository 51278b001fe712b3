/**
 * The content of the virtual design: its parameters, registers and events, one table for each.
 *
 * The tables are the model's own; nothing here is shared with the applet library.
 */
#ifndef VIRTUAL_BOARD_TABLES_DESIGN_TABLES_H
#define VIRTUAL_BOARD_TABLES_DESIGN_TABLES_H

#include "vexo/design_loader.h"

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

namespace vboard {

/** Type of a value, of a parameter or as passed by a caller. */
enum class Type : std::uint8_t { i32, u32, i64, u64, f64, text, field };

/** A row as an index; the row must exist (-1 means none). */
constexpr std::size_t indexOf(int row) { return static_cast<std::size_t>(row); }

/** Elements of an array parameter. */
inline constexpr std::uint32_t fieldSize = 16384;

struct EnumEntry {
    std::int32_t value;
    const char* label;
    const char* symbolicName;
};

/**
 * One parameter. Numbers are stored as 64 bits: integers widened with their own sign, doubles as their bit
 * pattern. A row starts with one of the makers below, followed by its special properties.
 */
struct ParameterRow {
    const char* name = nullptr; // full name
    Type type = Type::u32;
    bool writable = false;
    std::uint64_t start = 0;
    const char* text = ""; // start value of a text
    std::uint64_t minimum = 0;
    std::uint64_t maximum = 0;
    const char* unit = "";
    std::span<const EnumEntry> entries{};
    bool clearedByReading = false;
    int number = 0; // of the runtime's own parameters: their id

    constexpr ParameterRow in(const char* unitText) const {
        ParameterRow row = *this;
        row.unit = unitText;
        return row;
    }
    constexpr ParameterRow upTo(std::integral auto limit) const {
        ParameterRow row = *this;
        row.maximum = static_cast<std::uint64_t>(limit);
        return row;
    }
    constexpr ParameterRow upTo(double limit) const { return upTo(std::bit_cast<std::uint64_t>(limit)); }
    constexpr ParameterRow oneOf(std::span<const EnumEntry> choices) const {
        ParameterRow row = *this;
        row.entries = choices;
        return row;
    }
    constexpr ParameterRow resetsOnRead() const {
        ParameterRow row = *this;
        row.clearedByReading = true;
        return row;
    }
    constexpr ParameterRow answersTo(int id) const {
        ParameterRow row = *this;
        row.number = id;
        return row;
    }
};

enum Direction : bool { readOnly = false, writable = true };

constexpr ParameterRow u32(const char* name, Direction direction, std::uint32_t start) {
    return {.name = name,
            .type = Type::u32,
            .writable = direction,
            .start = start,
            .maximum = std::numeric_limits<std::uint32_t>::max()};
}
constexpr ParameterRow i32(const char* name, Direction direction, std::int32_t start) {
    return {.name = name,
            .type = Type::i32,
            .writable = direction,
            .start = static_cast<std::uint64_t>(std::int64_t{start}),
            .minimum = static_cast<std::uint64_t>(std::int64_t{std::numeric_limits<std::int32_t>::min()}),
            .maximum = std::numeric_limits<std::int32_t>::max()};
}
constexpr ParameterRow u64(const char* name, Direction direction, std::uint64_t start) {
    return {.name = name,
            .type = Type::u64,
            .writable = direction,
            .start = start,
            .maximum = std::numeric_limits<std::uint64_t>::max()};
}
constexpr ParameterRow i64(const char* name, Direction direction, std::int64_t start) {
    return {.name = name,
            .type = Type::i64,
            .writable = direction,
            .start = static_cast<std::uint64_t>(start),
            .minimum = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::min()),
            .maximum = std::numeric_limits<std::int64_t>::max()};
}
constexpr ParameterRow f64(const char* name, Direction direction, double start) {
    return {.name = name,
            .type = Type::f64,
            .writable = direction,
            .start = std::bit_cast<std::uint64_t>(start),
            .minimum = std::bit_cast<std::uint64_t>(0.0),
            .maximum = std::bit_cast<std::uint64_t>(1e6)};
}
constexpr ParameterRow text(const char* name, Direction direction, const char* start) {
    return {.name = name, .type = Type::text, .writable = direction, .text = start};
}
constexpr ParameterRow field(const char* name, std::uint64_t maximum) {
    return {.name = name, .type = Type::field, .writable = true, .maximum = maximum};
}

struct RegisterRow {
    const char* name;
    int id;
    int bits;
    bool writable;
    std::uint64_t start;
};

/** The design's parameters, then the runtime's own (those with a number). */
std::span<const ParameterRow> parameterRows();
std::span<const RegisterRow> registerRows();
std::span<const TslEvent> eventRows();

/** Row of the parameter with that name, or -1. One hash lookup. */
int findParameter(std::string_view name);
/** Row of the register with that name or id, or -1. */
int findRegister(std::string_view name);
int findRegister(int id);

/** The ids of the design's parameters start at firstParameterId, in the order of their rows. */
inline constexpr int firstParameterId = 10001;
/** Row with this `id`, or -1. */
int rowOfId(int id);
/** Id of a row. */
int idOfRow(int row);

} // namespace vboard

#endif
