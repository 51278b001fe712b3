#include "applet_tools/scratch/BoardState.h"

#include "applet_tools/applet/files/ConfigurationFile.h"
#include "applet_tools/applet/files/MemoryFile.h"
#include "applet_tools/applet/hardware_values.h"

#include "vexo/fg_errors.h"

#include <cmath>
#include <cstring>
#include <optional>
#include <set>

namespace applet_tools {

namespace {

/** Sets the parameter if its value differs, or always with `inAnyCase`; true if the set was accepted. */
bool setUnlessEqual(Instance& instance, const Parameter& parameter, const json& wanted,
                    bool inAnyCase = false) {
    const Target target = wholeOf(parameter);
    return (inAnyCase || !holds(instance, parameter, wanted)) &&
           writeValue(instance, target, requestFor(parameter, fromMessage(target, wanted))) == FG_OK;
}

} // namespace

json asBytes(std::string_view bytes) { return json::binary({bytes.begin(), bytes.end()}); }

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
            else if constexpr (std::is_same_v<T,
                                              Elements>) // as bytes, for speed
                return asBytes(
                    {reinterpret_cast<const char*>(native.data()), native.size() * sizeof native[0]});
            else if constexpr (std::is_same_v<T, WholeArray>)
                return nullptr;
            else
                return native;
        },
        value);
}

namespace {

/** Converts the value of the message to the type of `value`. */
void assign(Value& value, const json& message) {
    std::visit(
        [&](auto& native) {
            using T = std::decay_t<decltype(native)>;
            if constexpr (std::is_same_v<T, std::string>) {
                native = bytesOf(message);
            } else if constexpr (std::is_same_v<T, Elements>) {
                const auto& bytes = message.get_binary();
                native.resize(bytes.size() / sizeof native[0]);
                std::memcpy(native.data(), bytes.data(), native.size() * sizeof native[0]);
            } else if constexpr (!std::is_same_v<T, WholeArray>) {
                native = message.get<T>();
            }
        },
        value);
}

template <std::size_t... Type> Value emptyOfType(std::size_t type, std::index_sequence<Type...>) {
    Value value;
    ((type == Type ? static_cast<void>(value.emplace<Type>()) : void()), ...);
    return value;
}

} // namespace

Value fromMessage(const Target& target, const json& message) {
    Value value = emptyValue(target);
    assign(value, message);
    return value;
}

json asTypedMessage(const Value& value) {
    const auto* array = std::get_if<WholeArray>(&value);
    return {{"type", value.index()}, {"value", array != nullptr ? json(array->count) : asMessage(value)}};
}

Value fromTypedMessage(const json& message) {
    Value value = emptyOfType(message["type"].get<std::size_t>(),
                              std::make_index_sequence<std::variant_size_v<NativeValue>>());
    if (auto* array = std::get_if<WholeArray>(&value))
        array->count = message["value"].get<std::uint32_t>();
    else
        assign(value, message["value"]);
    return value;
}

Target wholeOf(const Parameter& parameter) {
    const std::uint32_t count = elementCount(parameter);
    if (count == 0) return {&parameter};
    return {&parameter, ElementRange{0, count - 1}};
}

namespace {

/** Arrays are long and read often: they share one buffer and are compared in it. */
bool hasBytes(Instance& instance, const Target& target, const json::binary_t& bytes) {
    thread_local Elements elements;
    elements.resize(target.elements->count());
    FieldParameterAccess run{.vtype = FG_PARAM_UINT32,
                             .index = target.elements->first,
                             .count = target.elements->count(),
                             .values = elements.data()};
    const int code = instance.applet().Fg_getParameterWithType(instance.fg(), target.parameter->id, &run, 0,
                                                               FG_PARAM_FIELD_ACCESS);
    return code == FG_OK && bytes.size() == elements.size() * sizeof elements[0] &&
           std::memcmp(bytes.data(), elements.data(), bytes.size()) == 0;
}

} // namespace

bool holds(Instance& instance, const Parameter& parameter, const json& wanted) {
    const Target target = wholeOf(parameter);
    if (target.elements) return hasBytes(instance, target, wanted.get_binary());
    const ReadResult reading = readValue(instance, target);
    return reading.error == FG_OK && reading.value == fromMessage(target, wanted);
}

Wanted wantedFrom(const ParameterList& parameters, const json& values) {
    Wanted wanted;
    for (const Parameter& parameter : parameters.all())
        if (const auto found = values.find(parameter.name);
            found != values.end() && !found->is_null() && parameter.effectOfWriting().empty())
            wanted.emplace_back(&parameter, &*found);
    return wanted;
}

void setAll(Instance& instance, const Wanted& wanted) {
    repeatSets([&] {
        bool isSet = false;
        for (const auto& [parameter, value] : wanted)
            isSet |= setUnlessEqual(instance, *parameter, *value);
        return isSet;
    });
}

void storeByLoad(Instance& instance, const Wanted& wanted) {
    std::optional<ConfigurationFile> state;
    bool isEdited = false;
    for (const auto& [parameter, value] : wanted) {
        const bool isWritten = value->is_number() && std::isfinite(value->get<double>());
        if (!isWritten || holds(instance, *parameter, *value)) continue;
        if (!state) state.emplace(stateOf(instance));
        const auto line = state->values().find(parameter->name);
        if (!line) continue;
        state.emplace(state->textWith(*line, parameter->name + "=" + value->dump() + ";\n"));
        isEdited = true;
    }
    if (!isEdited) return;
    const MemoryFile file;
    file.write(state->text());
    loadConfiguration(instance, file.configurationPath());
    setAll(instance, wanted); // a load computes the tables again
}

json valuesOf(Instance& instance, const ParameterList& parameters) {
    json values = json::object();
    for (const Parameter& parameter : parameters.all()) {
        if (!parameter.effectOfReading().empty()) continue;
        const ReadResult reading = readValue(instance, wholeOf(parameter));
        if (reading.error == FG_OK) values[parameter.name] = asMessage(reading.value);
    }
    return values;
}

json designOf(Instance& instance) {
    const ParameterList design(instance, ParameterList::Scope::design);
    return design.all().empty() ? json() : valuesOf(instance, design);
}

json boardStateOf(Instance& instance, const ParameterList& parameters) {
    return {{"design", designOf(instance)},
            {"values", valuesOf(instance, parameters)},
            {"loads", loadsOf(instance)}};
}

json loadsOf(Instance& instance) {
    json texts = json::array();
    for (const std::string& text : instance.loads().texts)
        texts.push_back(asBytes(text));
    return {{"texts", texts}, {"setSince", instance.loads().setSince}};
}

namespace {

void loadTexts(Instance& instance, const json& texts) {
    for (const json& text : texts) {
        const MemoryFile file;
        file.write(bytesOf(text));
        loadConfiguration(instance, file.configurationPath());
    }
}

/** Sets the numbers with these ids to their values. A mode that reads the same is the same. */
void setNumbersAgain(Instance& instance, const Wanted& wanted, const std::set<int>& ids) {
    for (const auto& [parameter, value] : wanted) {
        const bool isNumber = parameter->kind() != REGISTER_KIND_ENUM && value->is_number();
        if (isNumber && ids.contains(parameter->id)) setUnlessEqual(instance, *parameter, *value, true);
    }
}

} // namespace

void loadAgain(Instance& instance, const Wanted& wanted, const json& loads) {
    const json& texts = loads.at("texts");
    if (texts.empty()) return;
    // Before the loads: a set after them would store again the value of a parameter that they leave alone.
    setAll(instance, wanted);
    loadTexts(instance, texts);
    setNumbersAgain(instance, wanted, loads.at("setSince").get<std::set<int>>());
}

} // namespace applet_tools
