#include "entry/sdk_parameters.h"

#include "entry/setter_tools.h"

namespace {

consteval bool idsAreUnique() {
    for (std::size_t i = 0; i < sdkParameters.size(); ++i)
        for (std::size_t k = 0; k < i; ++k)
            if (sdkParameters[i].id == sdkParameters[k].id) return false;
    return true;
}

static_assert(idsAreUnique());

constexpr PerfectIndex<sdkParameters.size()> indexByName{[] {
    std::array<std::uint32_t, sdkParameters.size()> hashes{};
    for (std::size_t i = 0; i < sdkParameters.size(); ++i)
        hashes[i] = hashOf(sdkParameters[i].name);
    return hashes;
}()};

} // namespace

const SdkParameter* findParameter(std::string_view name) {
    const SdkParameter& candidate = sdkParameters[indexByName.find(hashOf(name))];
    return candidate.name == name ? &candidate : nullptr;
}

void kinds::Runtime::readRuntime(FgLoomWrapperImpl& wrapper, const SdkParameter& parameter, void* value,
                                 int dma, FgParamTypes type) {
    const int result = wrapper.getUnwrappedParameterWithType(parameter.id, value, dma, type);
    if (result != FG_OK) refuse(result);
}
