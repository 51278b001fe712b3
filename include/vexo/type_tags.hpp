/** The type tags of C++ types, for the typed accesses of fg_api.h. */
#ifndef VEXO_TYPE_TAGS_HPP
#define VEXO_TYPE_TAGS_HPP

#include "vexo/fg_api.h"

#include <type_traits>

/** The tag of a number of 32 or 64 bits or of an enumeration constant. */
template <typename T>
requires((std::is_integral_v<T> || std::is_enum_v<T>)&&(sizeof(T) == 4 ||
                                                        sizeof(T) == 8)) constexpr FgParamTypes integerTag() {
    if (sizeof(T) == 8) return std::is_signed_v<T> ? FG_PARAM_INT64 : FG_PARAM_UINT64;
    return std::is_signed_v<T> ? FG_PARAM_INT32 : FG_PARAM_UINT32;
}

/** The tag of a number type; for char, the tag of a text. A type without a tag does not compile. */
template <typename T> inline constexpr FgParamTypes tagOf = integerTag<T>();
template <> inline constexpr FgParamTypes tagOf<double> = FG_PARAM_DOUBLE;
template <> inline constexpr FgParamTypes tagOf<char> = FG_PARAM_TEXT;

#endif
