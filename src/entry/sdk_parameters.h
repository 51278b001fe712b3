/** The table of the parameters: name, id, setter and source. */
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

/** The camera port that trees and configuration files name: the applet has one. */
inline constexpr int port = 0;

struct SdkParameter {
    const char* name;
    int id;
    FgParamTypes type; // of a number or a text
    SetFunction* set;  // null: read-only
    ValueSource source;
    StartValue start;
    FileRole file;
};

/** Holds the rows. A friend of FgLoomWrapperImpl, since they name its members. */
struct SdkParameterTable {
#define SETTABLE(parameter, kind, member, startValue, role)                                                  \
    {#parameter,                                                                                             \
     parameter,                                                                                              \
     kinds::kind::type,                                                                                      \
     [](FgLoomWrapperImpl& wrapper, const void* value, FgParamTypes type) {                                  \
         wrapper.set_##parameter(kinds::kind::take(value, type));                                            \
     },                                                                                                      \
     kinds::kind::source<&FgLoomWrapperImpl::member>(),                                                      \
     kinds::startOf<kinds::kind>(startValue),                                                                \
     withMember<&FgLoomWrapperImpl::member>(file_roles::role)},
#define READ_ONLY(parameter, kind, member, role)                                                             \
    {#parameter,                                                                                             \
     parameter,                                                                                              \
     kinds::kind::type,                                                                                      \
     nullptr,                                                                                                \
     kinds::kind::source<&FgLoomWrapperImpl::member>(),                                                      \
     NoDefault,                                                                                              \
     file_roles::role},
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

/** The parameter with this id, or null. Every routed access calls it. */
inline const SdkParameter* findParameter(int id) {
    const SdkParameter& candidate = sdkParameters[indexById.find(static_cast<std::uint32_t>(id))];
    return candidate.id == id ? &candidate : nullptr;
}

/** The parameter of this name, or null. */
const SdkParameter* findParameter(std::string_view name);

inline void FgLoomWrapperImpl::read(const SdkParameter& parameter, void* value, int dma, FgParamTypes type) {
    const ValueSource& source = parameter.source;
    if (const auto* word = std::get_if<std::uint32_t FgLoomWrapperImpl::*>(&source))
        return Destination<std::uint32_t>(value).store(this->**word);
    if (const auto* number = std::get_if<double FgLoomWrapperImpl::*>(&source))
        return Destination<double>(value).store(this->**number);
    if (const auto* text = std::get_if<TextFunction*>(&source)) return giveText((*text)(*this), value, type);
    (*std::get_if<GetFunction*>(&source))(*this, parameter, value, dma, type);
}

#endif
