/**
 * The skeleton that all setters share.
 *
 * A setter is linear: check the value, store it, write it to the design, update limits. A refusal throws the
 * result code, an `int`. Design writes that succeeded are not undone.
 */
#ifndef ENTRY_SETTER_TOOLS_H
#define ENTRY_SETTER_TOOLS_H

#include "catalogue/enumerations.h"
#include "catalogue/parameter_tree.h"
#include "support/quietly.h"
#include "support/refuse.h"
#include "vexo/fg_errors.h"

#include <cstdint>

[[gnu::always_inline]] inline void requireEntry(catalogue::EnumTable table, std::uint32_t value) {
    if (!catalogue::contains(table, value)) refuse(FG_ERR_OUT_OF_RANGE);
}

/** Both bounds are inclusive. NaN compares false with both and is accepted. */
template <typename T> [[gnu::always_inline]] inline void requireRange(T value, T minimum, T maximum) {
    if (value < minimum || value > maximum) refuse(FG_ERR_OUT_OF_RANGE);
}

/** The same for the published limits of a parameter. */
template <typename T> [[gnu::always_inline]] inline void requireRange(T value, catalogue::Range<T> limits) {
    requireRange(value, limits.minimum, limits.maximum);
}

[[gnu::always_inline]] inline void requireAtLeast(std::uint32_t value, std::uint32_t minimum) {
    if (value < minimum) refuse(FG_ERR_OUT_OF_RANGE);
}

[[gnu::always_inline]] inline void requireAtMost(std::uint32_t value, std::uint32_t maximum) {
    if (value > maximum) refuse(FG_ERR_OUT_OF_RANGE);
}

[[gnu::always_inline]] inline void requireMultipleOf4(std::uint32_t value) {
    if ((value & 3u) != 0) refuse(FG_ERR_GRANULARITY);
}

#endif
