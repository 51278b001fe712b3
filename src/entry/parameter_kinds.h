/**
 * How the value of a parameter is taken from the caller and given to it.
 *
 * Each kind makes plain functions out of a parameter's setter and getter, for the table of
 * entry/sdk_parameters.h. A kind that cannot serve an access gives null, and the id then answers as unknown.
 */
#ifndef ENTRY_PARAMETER_KINDS_H
#define ENTRY_PARAMETER_KINDS_H

#include "vexo/fg_api.h"

#include <cstdint>
#include <cstring>
#include <type_traits>

class FgLoomWrapperImpl;
struct SdkParameter;

using SetFunction = void(FgLoomWrapperImpl& wrapper, const SdkParameter& parameter, const void* value,
                         FgParamTypes type);
using GetFunction = void(FgLoomWrapperImpl& wrapper, const SdkParameter& parameter, void* value, int dma,
                         FgParamTypes type);
using StartFunction = void(FgLoomWrapperImpl& wrapper);

/** In the place of a start value: the start-up sequence does not set the parameter. */
inline constexpr struct NoDefaultType {
} NoDefault;

namespace kinds {

/** A number in its native width, whatever the type tag says. */
template <typename T> struct Number {
    using Value = T;

    template <typename Setter> static constexpr SetFunction* setter(Setter) {
        return [](FgLoomWrapperImpl& wrapper, const SdkParameter&, const void* value, FgParamTypes) {
            T number;
            std::memcpy(&number, value, sizeof number);
            Setter{}(wrapper, number, true);
        };
    }

    template <typename Getter> static constexpr GetFunction* getter(Getter) {
        return [](FgLoomWrapperImpl& wrapper, const SdkParameter&, void* value, int, FgParamTypes) {
            if (reinterpret_cast<std::uintptr_t>(value) % alignof(T) == 0) {
                Getter{}(wrapper, static_cast<T*>(value));
                return;
            }
            T number;
            std::memcpy(&number, value, sizeof number); // a getter may leave its place alone
            Getter{}(wrapper, &number);
            std::memcpy(value, &number, sizeof number);
        };
    }

    template <typename Setter, typename Start> static constexpr StartFunction* starter(Setter, Start) {
        if constexpr (std::is_same_v<std::invoke_result_t<Start>, NoDefaultType>)
            return nullptr;
        else
            return [](FgLoomWrapperImpl& wrapper) { Setter{}(wrapper, static_cast<T>(Start{}()), false); };
    }
};

using UInt = Number<std::uint32_t>;
using Double = Number<double>;

/** The runtime has the value: reads go straight to it. */
struct Runtime {
    using Value = void;
    template <typename Getter> static constexpr GetFunction* getter(Getter) { return readRuntime; }
    static void readRuntime(FgLoomWrapperImpl& wrapper, const SdkParameter& parameter, void* value, int dma,
                            FgParamTypes type);
};

/** The subject is not built yet. */
struct NotYet {
    using Value = NotYet;
    template <typename Setter> static constexpr SetFunction* setter(Setter) { return nullptr; }
    template <typename Getter> static constexpr GetFunction* getter(Getter) { return nullptr; }
    template <typename Setter, typename Start> static constexpr StartFunction* starter(Setter, Start) {
        return nullptr;
    }
};

/** Answers a set of a read-only parameter: logged, and not available. */
void refuseWrite(FgLoomWrapperImpl& wrapper, const SdkParameter& parameter, const void* value,
                 FgParamTypes type);

} // namespace kinds

#endif
