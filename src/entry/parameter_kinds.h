/**
 * How the value of a parameter is taken from the caller and returned to it.
 *
 * A kind defines the type that a setter takes, `take`, which converts the caller's value to that type, and
 * `source`, the source of a get.
 */
#ifndef ENTRY_PARAMETER_KINDS_H
#define ENTRY_PARAMETER_KINDS_H

#include "entry/DesignAccess.h"
#include "vexo/fg_api.h"
#include "vexo/type_tags.hpp"

#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <span>
#include <string>
#include <type_traits>
#include <variant>

class FgLoomWrapperImpl;
struct SdkParameter;

using SetFunction = void(FgLoomWrapperImpl& wrapper, const void* value, FgParamTypes type);
using GetFunction = void(FgLoomWrapperImpl& wrapper, const SdkParameter& parameter, void* value, int dma,
                         FgParamTypes type);
using TextFunction = std::string(FgLoomWrapperImpl& wrapper);

/** The source of a get. Most are plain members, which need no call. */
using ValueSource = std::variant<std::uint32_t FgLoomWrapperImpl::*, double FgLoomWrapperImpl::*,
                                 TextFunction*, GetFunction*>;

/** Instead of a start value: the start-up sequence does not set the parameter. */
inline constexpr std::monostate NoDefault;

/** The value that a parameter starts with. */
using StartValue = std::variant<std::monostate, std::uint32_t, std::int32_t, double, const char*>;

/** The start value as a set takes it: the address of a number, or the text itself. Null if there is none. */
inline const void* valueOf(const StartValue& start) {
    if (const auto* text = std::get_if<const char*>(&start)) return *text;
    if (std::holds_alternative<std::monostate>(start)) return nullptr;
    return std::visit([](const auto& number) -> const void* { return &number; }, start);
}

/** A caller's record for elements of an array; the tag gives its type. */
struct FieldRecord {
    const void* record;
    FgParamTypes type;
};

namespace kinds {

/**
 * A number in its native width, regardless of the type tag.
 *
 * The source is a variable, a function that returns the number, or one that takes the caller's `Destination` and
 * may leave it unwritten.
 */
template <typename T> struct Number {
    using Value = T;
    static constexpr FgParamTypes type = tagOf<T>;

    static T take(const void* value, FgParamTypes) {
        T number;
        std::memcpy(&number, value, sizeof number);
        return number;
    }

    template <auto member> static consteval ValueSource source() {
        if constexpr (std::is_constructible_v<ValueSource, decltype(member)>)
            return member;
        else
            return read<member>;
    }

private:
    template <auto member>
    static void read(FgLoomWrapperImpl& wrapper, const SdkParameter&, void* value, int, FgParamTypes) {
        const Destination<T> destination(value);
        if constexpr (std::is_invocable_v<decltype(member), FgLoomWrapperImpl&, Destination<T>>)
            std::invoke(member, wrapper, destination);
        else
            destination.store(T{std::invoke(member, wrapper)});
    }
};

using UInt = Number<std::uint32_t>;
using Int = Number<std::int32_t>;
using UInt64 = Number<std::uint64_t>;
using Int64 = Number<std::int64_t>;
using Double = Number<double>;

/** A text: on a set, the value pointer itself is the text. */
struct Text {
    using Value = const char*;
    static constexpr FgParamTypes type = FG_PARAM_TEXT;

    static const char* take(const void* value, FgParamTypes) { return static_cast<const char*>(value); }
    template <auto member> static consteval ValueSource source() {
        return [](FgLoomWrapperImpl& wrapper) -> std::string { return std::invoke(member, wrapper); };
    }
};

/** A text that the design writes directly into the caller's buffer. The source is its reader. */
struct DesignText {
    using Reader = void (FgLoomWrapperImpl::*)(Destination<char> out);
    static constexpr FgParamTypes type = FG_PARAM_TEXT;
    template <auto reader> static consteval ValueSource source() {
        return [](FgLoomWrapperImpl& wrapper, const SdkParameter&, void* value, int, FgParamTypes type) {
            readText(wrapper, reader, value, type);
        };
    }
    static void readText(FgLoomWrapperImpl& wrapper, Reader reader, void* value, FgParamTypes type);
};

/** An array of words; the tag selects access to one element or to a run of them. */
struct Field {
    using Value = FieldRecord;
    static constexpr FgParamTypes type = FG_PARAM_FIELD_INT;

    static FieldRecord take(const void* record, FgParamTypes tag) { return {record, tag}; }
    template <auto member> static consteval ValueSource source() {
        return [](FgLoomWrapperImpl& wrapper, const SdkParameter&, void* value, int, FgParamTypes type) {
            readField(std::invoke(member, wrapper), value, type);
        };
    }

    /** Fills the caller's record from the array. Refuses elements outside it. */
    static void readField(std::span<const std::uint32_t> field, void* record, FgParamTypes type);
};

/** The runtime has the value: reads go straight to it. */
struct Runtime {
    static constexpr FgParamTypes type = FG_PARAM_UINT32;
    template <auto> static consteval ValueSource source() { return readRuntime; }
    static void readRuntime(FgLoomWrapperImpl& wrapper, const SdkParameter& parameter, void* value, int dma,
                            FgParamTypes type);
};

template <typename Kind> consteval StartValue startOf(std::monostate) { return {}; }
template <typename Kind> consteval StartValue startOf(auto value) {
    return static_cast<typename Kind::Value>(value);
}

} // namespace kinds

#endif
