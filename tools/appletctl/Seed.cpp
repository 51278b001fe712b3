#include "appletctl/Seed.h"

#include "vexo/fg_errors.h"

namespace appletctl {
namespace {

json valuesOf(Instance& instance, const ParameterList& parameters) {
    json values = json::object();
    for (const Parameter& parameter : parameters.all()) {
        if (!parameter.effectOfReading().empty()) continue;
        const Reading reading = readValue(instance, wholeOf(parameter));
        if (reading.error == FG_OK) values[parameter.name] = asMessage(reading.value);
    }
    return values;
}

} // namespace

json asMessage(const Value& value) {
    return std::visit(
        [](const auto& native) -> json {
            using T = std::decay_t<decltype(native)>;
            if constexpr (std::is_same_v<T, std::string>)
                return json::binary({native.begin(), native.end()}); // may be no UTF-8
            else if constexpr (std::is_same_v<T, WholeArray>)
                return nullptr;
            else
                return native;
        },
        value);
}

Value fromMessage(const Target& target, const json& message) {
    Value value = emptyValue(target);
    std::visit(
        [&](auto& native) {
            using T = std::decay_t<decltype(native)>;
            if constexpr (std::is_same_v<T, std::string>) {
                const auto& bytes = message.get_binary();
                native.assign(bytes.begin(), bytes.end());
            } else if constexpr (!std::is_same_v<T, WholeArray>) {
                native = message.get<T>();
            }
        },
        value);
    return value;
}

Target wholeOf(const Parameter& parameter) {
    const std::uint32_t count = elementCount(parameter);
    if (count == 0) return {&parameter};
    return {&parameter, ElementRange{0, count - 1}};
}

json seedOf(Instance& instance, const ParameterList& parameters) {
    const ParameterList design(instance, ParameterList::Scope::design);
    return {{"design", design.all().empty() ? json() : valuesOf(instance, design)},
            {"values", valuesOf(instance, parameters)}};
}

} // namespace appletctl
