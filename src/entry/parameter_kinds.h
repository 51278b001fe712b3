/**
 * How the value of a parameter is taken from the caller and given to it.
 *
 * Each kind makes the columns of entry/sdk_parameters.h out of a parameter's setter and source.
 */
#ifndef ENTRY_PARAMETER_KINDS_H
#define ENTRY_PARAMETER_KINDS_H

#include "vexo/fg_api.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <span>
#include <string>
#include <type_traits>

/** The type tag of a number of type T; char is an element of a text. */
template <typename T> extern const FgParamTypes tagOf;
template <> inline constexpr FgParamTypes tagOf<std::int32_t> = FG_PARAM_INT32;
template <> inline constexpr FgParamTypes tagOf<std::uint32_t> = FG_PARAM_UINT32;
template <> inline constexpr FgParamTypes tagOf<std::int64_t> = FG_PARAM_INT64;
template <> inline constexpr FgParamTypes tagOf<std::uint64_t> = FG_PARAM_UINT64;
template <> inline constexpr FgParamTypes tagOf<double> = FG_PARAM_DOUBLE;
template <> inline constexpr FgParamTypes tagOf<char> = FG_PARAM_TEXT;

class FgLoomWrapperImpl;
struct SdkParameter;

using SetFunction = void(FgLoomWrapperImpl& wrapper, const void* value, FgParamTypes type);
using GetFunction = void(FgLoomWrapperImpl& wrapper, const SdkParameter& parameter, void* value, int dma,
                         FgParamTypes type);
using TextFunction = std::string(FgLoomWrapperImpl& wrapper);
using StartFunction = void(FgLoomWrapperImpl& wrapper);

/** Where a get finds its answer: most parameters are plain members, which need no call. One is filled. */
struct Reading {
    std::uint32_t FgLoomWrapperImpl::*word = nullptr;
    double FgLoomWrapperImpl::*number = nullptr;
    TextFunction* text = nullptr;
    GetFunction* function = nullptr;
};

/** The caller's place for a value, wherever that is aligned. */
template <typename T> class Place {
public:
    explicit Place(void* place) : m_place(place) {}
    void* address() const { return m_place; }
    void store(T number) const { std::memcpy(m_place, &number, sizeof number); }

private:
    void* m_place;
};

/** A caller's record for elements of an array: of which type, the tag says. */
struct FieldRecord {
    const void* record;
    FgParamTypes type;
};

/** In the place of a start value: the start-up sequence does not set the parameter. */
inline constexpr struct NoDefaultType {
} NoDefault;

namespace kinds {

template <typename Value, typename Setter, typename Start> consteval StartFunction* starterOf(Setter, Start) {
    if constexpr (std::is_same_v<std::invoke_result_t<Start>, NoDefaultType>)
        return nullptr;
    else
        return [](FgLoomWrapperImpl& wrapper) { Setter{}(wrapper, static_cast<Value>(Start{}())); };
}

/**
 * A number in its native width, whatever the type tag says.
 *
 * The source is a variable, a function that returns the number, or one that takes the caller's `Place`, which
 * it may leave unwritten.
 */
template <typename T> struct Number {
    using Value = T;
    static constexpr FgParamTypes type = tagOf<T>;

    template <typename Setter> static consteval SetFunction* setter(Setter) {
        return [](FgLoomWrapperImpl& wrapper, const void* value, FgParamTypes) {
            T number;
            std::memcpy(&number, value, sizeof number);
            Setter{}(wrapper, number);
        };
    }

    template <auto source> static consteval Reading reading() {
        using Source = decltype(source);
        if constexpr (std::is_same_v<Source, T FgLoomWrapperImpl::*> && std::is_same_v<T, std::uint32_t>)
            return {.word = source};
        else if constexpr (std::is_same_v<Source, T FgLoomWrapperImpl::*> && std::is_same_v<T, double>)
            return {.number = source};
        else
            return {.function = read<source>};
    }

    template <typename Setter, typename Start>
    static constexpr StartFunction* starter(Setter set, Start start) {
        return starterOf<T>(set, start);
    }

private:
    template <auto source>
    static void read(FgLoomWrapperImpl& wrapper, const SdkParameter&, void* value, int, FgParamTypes) {
        const Place<T> place(value);
        if constexpr (std::is_invocable_v<decltype(source), FgLoomWrapperImpl&, Place<T>>)
            std::invoke(source, wrapper, place);
        else
            place.store(T{std::invoke(source, wrapper)});
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

    template <typename Setter> static consteval SetFunction* setter(Setter) {
        return [](FgLoomWrapperImpl& wrapper, const void* value, FgParamTypes) {
            Setter{}(wrapper, static_cast<const char*>(value));
        };
    }
    template <auto source> static consteval Reading reading() {
        return {
            .text = [](FgLoomWrapperImpl& wrapper) -> std::string { return std::invoke(source, wrapper); }};
    }
    template <typename Setter, typename Start>
    static constexpr StartFunction* starter(Setter set, Start start) {
        return starterOf<const char*>(set, start);
    }
};

/** A text of the design, which writes it into the caller's buffer itself. The source is its reader. */
struct DesignText {
    using Reader = void (FgLoomWrapperImpl::*)(Place<char> out);
    static constexpr FgParamTypes type = FG_PARAM_TEXT;
    template <Reader source> static consteval Reading reading() {
        return {.function = [](FgLoomWrapperImpl& wrapper, const SdkParameter&, void* value, int,
                               FgParamTypes type) { readText(wrapper, source, value, type); }};
    }
    static void readText(FgLoomWrapperImpl& wrapper, Reader source, void* value, FgParamTypes type);
};

/** An array of words: the tag tells whether one element or a run of them is accessed. */
struct Field {
    using Value = FieldRecord;
    static constexpr FgParamTypes type = FG_PARAM_FIELD_INT;

    template <typename Setter> static consteval SetFunction* setter(Setter) {
        return [](FgLoomWrapperImpl& wrapper, const void* value, FgParamTypes type) {
            Setter{}(wrapper, FieldRecord{value, type});
        };
    }
    template <auto source> static consteval Reading reading() {
        return {.function = [](FgLoomWrapperImpl& wrapper, const SdkParameter&, void* value, int,
                               FgParamTypes type) { readField(std::invoke(source, wrapper), value, type); }};
    }
    static constexpr StartFunction* starter(auto, auto) { return nullptr; }

    static bool isInside(const FieldParameterAccess& run, std::size_t size) {
        return run.count <= size && run.index <= size - run.count;
    }
    /** Fills the caller's record from the array. Refuses what lies outside of it. */
    static void readField(std::span<const std::uint32_t> field, void* record, FgParamTypes type);
};

/** The runtime has the value: reads go straight to it. */
struct Runtime {
    static constexpr FgParamTypes type = FG_PARAM_UINT32;
    template <auto> static consteval Reading reading() { return {.function = readRuntime}; }
    static void readRuntime(FgLoomWrapperImpl& wrapper, const SdkParameter& parameter, void* value, int dma,
                            FgParamTypes type);
};

} // namespace kinds

#endif
