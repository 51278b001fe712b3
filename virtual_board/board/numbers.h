/** Numbers of any kind in 64 bits: integers widened with their own sign, doubles as their bit pattern. */
#ifndef VIRTUAL_BOARD_BOARD_NUMBERS_H
#define VIRTUAL_BOARD_BOARD_NUMBERS_H

#include "virtual_board/tables/design_tables.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vboard {

/** The type of a tag; nothing for tags of allocated texts and unknown ones. */
std::optional<Type> typeOfTag(int tag);
/** The tag of a type; for a field, that of a run of elements. */
int tagOf(Type type);

constexpr bool isNumber(Type type) { return type != Type::text && type != Type::field; }

/**
 * The same number as another type. Between integers the upper bits are dropped, as in a register; a double
 * is truncated and clamped to the range of the type.
 */
std::uint64_t converted(Type from, std::uint64_t bits, Type to);

/** Loads or stores a number of that type at any alignment. */
std::uint64_t loadNumber(Type type, const void* source);
void storeNumber(Type type, std::uint64_t bits, void* destination);

/** "u32", "f64", ... */
const char* typeWord(Type type);
/** Decimal; for a double the shortest text that reads back the same. */
std::string numberText(Type type, std::uint64_t bits);

} // namespace vboard

#endif
