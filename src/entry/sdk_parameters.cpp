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
                                 int dma, FgParamTypes tag) {
    const int result = wrapper.getUnwrappedParameterWithType(parameter.id, value, dma, tag);
    if (result != FG_OK) refuse(result);
}

void kinds::DesignText::readText(FgLoomWrapperImpl& wrapper, Reader reader, void* value, FgParamTypes tag) {
    if (tag != FG_PARAM_ALLOCATED_STRING) return (wrapper.*reader)(Destination<char>(value));
    const auto read = [&](char* text) { (wrapper.*reader)(Destination<char>(text)); };
    wrapper.giveText(RuntimeTextRoom().take(read), value, tag);
}

void kinds::Field::readField(std::span<const std::uint32_t> field, void* record, FgParamTypes tag) {
    if (tag != FG_PARAM_FIELD_ACCESS) {
        auto* element = static_cast<FieldParameterInt_s*>(record);
        if (element->index >= field.size()) refuse(FG_ERR_INVALID_ARGUMENT);
        field_copy::get(field.data(), element);
        return;
    }
    const auto& run = *static_cast<const FieldParameterAccess*>(record);
    const bool wide = field_copy::elementWidth(run.vtype) > sizeof field[0];
    if (run.index >= field.size() || !field_copy::isInside(run, wide ? field.size() / 2 : field.size()))
        refuse(FG_ERR_INVALID_ARGUMENT);
    if (run.count > 0 && run.values == nullptr) refuse(FG_ERR_INVALID_ARGUMENT);
    field_copy::getRun(field.data(), &run);
}
