/** The table of the parameters: name, id, and the functions behind them. */
#ifndef ENTRY_SDK_PARAMETERS_H
#define ENTRY_SDK_PARAMETERS_H

#include "entry/FgLoomWrapperImpl.h"
#include "entry/configuration_roles.h"
#include "entry/parameter_kinds.h"
#include "support/PerfectIndex.h"

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

struct SdkParameter {
    const char* name;
    int id;
    FgParamTypes type; // of a number or a text
    SetFunction* set;  // null: read-only
    Reading reading;
    StartFunction* start; // null: not set by the start-up sequence
    FileRole file;
};

template <typename Kind, auto source, typename Setter, typename Start>
constexpr SdkParameter settableRow(const char* name, int id, Setter setter, Start start, FileRole file) {
    return {name,
            id,
            Kind::type,
            Kind::setter(setter),
            Kind::template reading<source>(),
            Kind::starter(setter, start),
            withMember<source>(file)};
}

template <typename Kind, auto source>
constexpr SdkParameter readOnlyRow(const char* name, int id, FileRole file) {
    return {name, id, Kind::type, nullptr, Kind::template reading<source>(), nullptr, file};
}

/** Holds the rows; a friend of the class whose members they name. */
struct SdkParameterTable {
#define SETTABLE(parameter, kind, source, startValue, file)                                                  \
    settableRow<kinds::kind, &FgLoomWrapperImpl::source>(                                                    \
        #parameter, parameter,                                                                               \
        [](FgLoomWrapperImpl& wrapper, auto value) { wrapper.set_##parameter(value); },                      \
        [] { return startValue; }, file_roles::file),
#define READ_ONLY(parameter, kind, source, file)                                                             \
    readOnlyRow<kinds::kind, &FgLoomWrapperImpl::source>(#parameter, parameter, file_roles::file),
    static constexpr SdkParameter rows[] = {
#include "catalogue/sdk_parameters.def"
    };
#undef SETTABLE
#undef READ_ONLY
};

/** In the order of the parameters' index. */
inline constexpr std::span<const SdkParameter, FgLoomWrapperImpl::publicParameters> sdkParameters{
    SdkParameterTable::rows};

/** Index of a parameter that is known at compile time; an unknown id does not compile. */
consteval std::size_t indexOf(int id) {
    std::size_t index = 0;
    while (sdkParameters[index].id != id)
        ++index;
    return index;
}

/** The parameters' positions by their ids, as 32-bit words. */
inline constexpr PerfectIndex<sdkParameters.size()> indexById{[] {
    std::array<std::uint32_t, sdkParameters.size()> ids{};
    for (std::size_t i = 0; i < ids.size(); ++i)
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

inline void FgLoomWrapperImpl::read(const SdkParameter& parameter, void* value, int dma, FgParamTypes type) {
    const Reading& reading = parameter.reading;
    if (reading.word != nullptr) return Place<std::uint32_t>(value).store(this->*reading.word);
    if (reading.number != nullptr) return Place<double>(value).store(this->*reading.number);
    if (reading.text != nullptr) return giveText(reading.text(*this), value, type);
    reading.function(*this, parameter, value, dma, type);
}

#endif
