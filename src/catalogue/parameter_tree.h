/**
 * The published tree, one row for each group and each parameter, in reading order.
 *
 * A group's depth tells where it hangs: below the last group of the depth above. A parameter belongs to the
 * group read last. In the tree itself a group's sub-groups come before its own parameters.
 */
#ifndef CATALOGUE_PARAMETER_TREE_H
#define CATALOGUE_PARAMETER_TREE_H

#include "catalogue/enumerations.h"
#include "vexo/register_info.h"

#include <cstdint>
#include <span>
#include <variant>

namespace catalogue {

/** Limits of a number. Some records publish limits that say nothing (0 to 0) or that the bring-up overwrites.
 */
template <typename T> struct Range { T minimum, maximum, increment; };

using UInt = Range<std::uint32_t>;
using Int = Range<std::int32_t>;
using UInt64 = Range<std::uint64_t>;
using Int64 = Range<std::int64_t>;
using Double = Range<double>;

struct UIntField {
    std::int32_t elementCount;
    std::uint32_t minimum, maximum, increment;
};

struct Enumeration {
    EnumTable entries;
};

struct Text {
    const char* value;
};

struct Group {
    int depth;
};

/** One row: a group, or a parameter with what its kind needs. */
struct TreeRow {
    int id = 0;
    const char* label;
    std::variant<Group, UInt, Int, UInt64, Int64, Double, UIntField, Enumeration, Text> content;
    int access = 0;
    int paramClass = 0;
    const char* unit = "";
};

extern const std::span<const TreeRow> parameterTree;

} // namespace catalogue

#endif
