/** The table of the parameters: name, id, and the functions behind them. */
#ifndef ENTRY_SDK_PARAMETERS_H
#define ENTRY_SDK_PARAMETERS_H

#include "entry/FgLoomWrapperImpl.h"
#include "entry/parameter_kinds.h"
#include "support/PerfectIndex.h"

#include <array>
#include <cstddef>

struct SdkParameter {
    const char* name;
    int id;
    SetFunction* set;     // null: cannot be set yet
    GetFunction* get;     // null: cannot be read yet
    StartFunction* start; // null: not set by the start-up sequence
};

template <typename Kind, typename Setter, typename Getter, typename Start>
constexpr SdkParameter settable(const char* name, int id, Setter setter, Getter getter, Start start) {
    return {name, id, Kind::setter(setter), Kind::getter(getter), Kind::starter(setter, start)};
}

template <typename Kind, typename Getter>
constexpr SdkParameter readOnly(const char* name, int id, Getter getter) {
    return {name, id, kinds::refuseWrite, Kind::getter(getter), nullptr};
}

// The lambdas are generic so that a kind without a setter or getter names no member that does not exist.
#define SETTABLE(parameter, kind, startValue)                                                                \
    settable<kinds::kind>(                                                                                   \
        #parameter, parameter,                                                                               \
        [](FgLoomWrapperImpl& wrapper, auto value, bool raise) { wrapper.set_##parameter(value, raise); },   \
        [](FgLoomWrapperImpl& wrapper, auto* out) { wrapper.get_##parameter(out); },                         \
        [] { return startValue; }),
#define READ_ONLY(parameter, kind)                                                                           \
    readOnly<kinds::kind>(#parameter, parameter,                                                             \
                          [](FgLoomWrapperImpl& wrapper, auto* out) { wrapper.get_##parameter(out); }),

/** In the order of the parameters' index. */
inline constexpr SdkParameter sdkParameters[] = {
#include "catalogue/sdk_parameters.def"
};

#undef SETTABLE
#undef READ_ONLY

inline constexpr std::size_t sdkParameterCount = std::size(sdkParameters);
static_assert(sdkParameterCount == FgLoomWrapperImpl::publicParameters);

/** Index of a parameter that is known at compile time; an unknown id does not compile. */
consteval std::size_t indexOf(int id) {
    std::size_t index = 0;
    while (sdkParameters[index].id != id)
        ++index;
    return index;
}

/** The parameters' positions by their ids, as 32-bit words. */
inline constexpr PerfectIndex<sdkParameterCount> indexById{[] {
    std::array<std::uint32_t, sdkParameterCount> ids{};
    for (std::size_t i = 0; i < sdkParameterCount; ++i)
        ids[i] = static_cast<std::uint32_t>(sdkParameters[i].id);
    return ids;
}()};

/** The parameter with this id, or null. Every routed access asks. */
inline const SdkParameter* findParameter(int id) {
    const SdkParameter& candidate = sdkParameters[indexById.find(static_cast<std::uint32_t>(id))];
    return candidate.id == id ? &candidate : nullptr;
}

/** The parameter of this name, or null. */
const SdkParameter* findParameter(std::string_view name);

#endif
