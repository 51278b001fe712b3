#include "virtual_board/board/numbers.h"

#include "vexo/fg_api.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace vboard {
namespace {

template <typename To, typename From> To cast(From value) {
    if constexpr (std::is_integral_v<To> && std::is_floating_point_v<From>) {
        using Limits = std::numeric_limits<To>;
        if (std::isnan(value)) return 0;
        // As doubles the limits may be one too large, so compare with "not below".
        if (value >= static_cast<From>(Limits::max())) return Limits::max();
        if (value <= static_cast<From>(Limits::min())) return Limits::min();
    }
    return static_cast<To>(value);
}

template <typename Number> std::uint64_t packed(Number value) {
    if constexpr (std::is_floating_point_v<Number>)
        return std::bit_cast<std::uint64_t>(value);
    else if constexpr (std::is_signed_v<Number>)
        return static_cast<std::uint64_t>(std::int64_t{value});
    else
        return std::uint64_t{value};
}

/** Calls `use` with the number as a value of its C++ type. */
template <typename Use> auto withNumber(Type type, std::uint64_t bits, Use use) {
    switch (type) {
    case Type::i32:
        return use(static_cast<std::int32_t>(bits));
    case Type::i64:
        return use(static_cast<std::int64_t>(bits));
    case Type::u64:
        return use(bits);
    case Type::f64:
        return use(std::bit_cast<double>(bits));
    default:
        return use(static_cast<std::uint32_t>(bits));
    }
}

struct TagRow {
    int tag;
    Type type;
};

constexpr TagRow tagRows[] = {
    {FG_PARAM_INT32, Type::i32},          {FG_PARAM_UINT32, Type::u32},      {FG_PARAM_INT64, Type::i64},
    {FG_PARAM_UINT64, Type::u64},         {FG_PARAM_DOUBLE, Type::f64},      {FG_PARAM_TEXT, Type::text},
    {FG_PARAM_FIELD_ACCESS, Type::field}, {FG_PARAM_FIELD_INT, Type::field},
};

} // namespace

std::optional<Type> typeOfTag(int tag) {
    for (const TagRow& row : tagRows)
        if (row.tag == tag) return row.type;
    return {};
}

int tagOf(Type type) {
    for (const TagRow& row : tagRows)
        if (row.type == type) return row.tag;
    return 0;
}

std::uint64_t converted(Type from, std::uint64_t bits, Type to) {
    if (from == to) return bits;
    return withNumber(from, bits, [to](auto value) {
        return withNumber(to, 0, [value](auto like) { return packed(cast<decltype(like)>(value)); });
    });
}

std::uint64_t loadNumber(Type type, const void* source) {
    return withNumber(type, 0, [source](auto value) {
        std::memcpy(&value, source, sizeof value);
        return packed(value);
    });
}

void storeNumber(Type type, std::uint64_t bits, void* destination) {
    withNumber(type, bits, [destination](auto value) { std::memcpy(destination, &value, sizeof value); });
}

const char* typeWord(Type type) {
    constexpr const char* words[] = {"i32", "u32", "i64", "u64", "f64", "text", "field"};
    return words[static_cast<std::size_t>(type)];
}

std::string numberText(Type type, std::uint64_t bits) {
    return withNumber(type, bits, [](auto value) {
        char digits[32];
        const auto end = std::to_chars(std::begin(digits), std::end(digits), value).ptr;
        return std::string(digits, end);
    });
}

} // namespace vboard
