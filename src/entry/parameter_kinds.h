/**
 * How the value of a parameter is taken from the caller and given to it.
 *
 * Each kind makes the columns of entry/sdk_parameters.h out of a parameter's setter and source. What a kind
 * cannot serve stays empty, and the id then answers as unknown.
 */
#ifndef ENTRY_PARAMETER_KINDS_H
#define ENTRY_PARAMETER_KINDS_H

#include "vexo/fg_api.h"

#include <cstdint>
#include <cstring>
#include <type_traits>

class FgLoomWrapperImpl;
struct SdkParameter;

using SetFunction = void(FgLoomWrapperImpl& wrapper, const void* value, FgParamTypes type);
using GetFunction = void(FgLoomWrapperImpl& wrapper, const SdkParameter& parameter, void* value, int dma,
                         FgParamTypes type);
using StartFunction = void(FgLoomWrapperImpl& wrapper);

/** Where a get finds its answer: most parameters are plain members, which need no call. */
struct Reading {
    std::uint32_t FgLoomWrapperImpl::*word = nullptr;
    double FgLoomWrapperImpl::*number = nullptr;
    GetFunction* function = nullptr;
};

/** In the place of a start value: the start-up sequence does not set the parameter. */
inline constexpr struct NoDefaultType {
} NoDefault;

namespace kinds {

/** A number in its native width, whatever the type tag says. */
template <typename T> struct Number {
    using Value = T;

    template <typename Setter> static constexpr SetFunction* setter(Setter) {
        return [](FgLoomWrapperImpl& wrapper, const void* value, FgParamTypes) {
            T number;
            std::memcpy(&number, value, sizeof number);
            Setter{}(wrapper, number);
        };
    }

    static constexpr Reading reading(std::uint32_t FgLoomWrapperImpl::*member, auto) {
        static_assert(std::is_same_v<T, std::uint32_t>);
        return {.word = member};
    }
    static constexpr Reading reading(double FgLoomWrapperImpl::*member, auto) {
        static_assert(std::is_same_v<T, double>);
        return {.number = member};
    }
    template <typename Read> static constexpr Reading reading(T (FgLoomWrapperImpl::*)(), Read) {
        return {
            .function = [](FgLoomWrapperImpl& wrapper, const SdkParameter&, void* value, int, FgParamTypes) {
                const T number = Read{}(wrapper);
                std::memcpy(value, &number, sizeof number);
            }};
    }

    template <typename Setter, typename Start> static constexpr StartFunction* starter(Setter, Start) {
        if constexpr (std::is_same_v<std::invoke_result_t<Start>, NoDefaultType>)
            return nullptr;
        else
            return [](FgLoomWrapperImpl& wrapper) { Setter{}(wrapper, static_cast<T>(Start{}())); };
    }
};

using UInt = Number<std::uint32_t>;
using Double = Number<double>;

/** The runtime has the value: reads go straight to it. */
struct Runtime {
    static constexpr Reading reading(auto, auto) { return {.function = readRuntime}; }
    static void readRuntime(FgLoomWrapperImpl& wrapper, const SdkParameter& parameter, void* value, int dma,
                            FgParamTypes type);
};

/** The subject is not built yet. */
struct NotYet {
    using Value = NotYet;
    static constexpr SetFunction* setter(auto) { return nullptr; }
    static constexpr Reading reading(auto, auto) { return {}; }
    static constexpr StartFunction* starter(auto, auto) { return nullptr; }
};

} // namespace kinds

#endif
