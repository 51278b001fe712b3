#include "appletctl/Seed.h"

#include "vexo/fg_errors.h"

namespace appletctl {

json asBytes(const std::string& text) { return json::binary({text.begin(), text.end()}); }

std::string bytesOf(const json& message) {
    const auto& bytes = message.get_binary();
    return {bytes.begin(), bytes.end()};
}

json asMessage(const Value& value) {
    return std::visit(
        [](const auto& native) -> json {
            using T = std::decay_t<decltype(native)>;
            if constexpr (std::is_same_v<T, std::string>)
                return asBytes(native);
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
                native = bytesOf(message);
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

json valuesOf(Instance& instance, const ParameterList& parameters) {
    json values = json::object();
    for (const Parameter& parameter : parameters.all()) {
        if (!parameter.effectOfReading().empty()) continue;
        const Reading reading = readValue(instance, wholeOf(parameter));
        if (reading.error == FG_OK) values[parameter.name] = asMessage(reading.value);
    }
    return values;
}

json designOf(Instance& instance) {
    const ParameterList design(instance, ParameterList::Scope::design);
    return design.all().empty() ? json() : valuesOf(instance, design);
}

json seedOf(Instance& instance, const ParameterList& parameters) {
    return {{"design", designOf(instance)}, {"values", valuesOf(instance, parameters)}};
}

} // namespace appletctl
