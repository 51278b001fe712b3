#include "appletctl/values.h"

#include "appletctl/errors.h"
#include "appletctl/limits.h"
#include "appletctl/text.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <type_traits>

namespace appletctl {
namespace {

template <typename T> constexpr bool isNumber = std::is_arithmetic_v<T>;

template <typename T> constexpr FgParamTypes tagOf() {
    if constexpr (std::is_same_v<T, std::int32_t>) return FG_PARAM_INT32;
    if constexpr (std::is_same_v<T, std::uint32_t>) return FG_PARAM_UINT32;
    if constexpr (std::is_same_v<T, std::int64_t>) return FG_PARAM_INT64;
    if constexpr (std::is_same_v<T, std::uint64_t>) return FG_PARAM_UINT64;
    return FG_PARAM_DOUBLE;
}

/** A value of the native type of the parameter's kind. */
Value emptyValue(const Parameter& parameter) {
    switch (parameter.kind()) {
    case REGISTER_KIND_ENUM:
    case REGISTER_KIND_INT:
        return std::int32_t{};
    case REGISTER_KIND_UINT64:
        return std::uint64_t{};
    case REGISTER_KIND_INT64:
        return std::int64_t{};
    case REGISTER_KIND_DOUBLE:
        return double{};
    case REGISTER_KIND_STRING:
        return std::string{};
    case REGISTER_KIND_UINT_FIELD:
    case REGISTER_KIND_INT_FIELD:
        return Elements{parameter.record->value.u32Field.elementCount};
    case REGISTER_KIND_UINT64_FIELD:
    case REGISTER_KIND_INT64_FIELD:
    case REGISTER_KIND_DOUBLE_FIELD:
        return Elements{parameter.record->value.u64Field.elementCount};
    default:
        return std::uint32_t{};
    }
}

int readText(Instance& instance, const Parameter& parameter, std::string& text) {
    const auto& applet = instance.applet();
    char* allocated = nullptr;
    const int error =
        applet.Fg_getParameterWithType(instance.fg(), parameter.id, &allocated, 0, FG_PARAM_ALLOCATED_STRING);
    if (error != FG_OK || allocated == nullptr) return error;
    text = toUtf8(allocated);
    applet.Fg_freeParameterStringWithType(instance.fg(), parameter.id, allocated, 0,
                                          FG_PARAM_ALLOCATED_STRING);
    return FG_OK;
}

std::optional<std::int32_t> entryByName(const Parameter& parameter, const std::string& text) {
    const std::string wanted = lowerCase(text);
    for (const Entry& entry : entriesOf(parameter)) {
        const std::string symbol = lowerCase(entry.symbol);
        if (symbol == wanted || symbol == "fg_" + wanted || lowerCase(entry.label) == wanted)
            return entry.value;
    }
    return std::nullopt;
}

[[noreturn]] void refuseText(const Parameter& parameter, const std::string& text, const std::string& reason) {
    throw UsageError(parameter.name + "=" + printable(text) + ": " + reason);
}

/** A whole number, decimal or 0x..., with or without sign, to the last character. */
template <typename Integer> std::optional<Integer> wholeNumber(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        base = 16;
        text.remove_prefix(2);
    }
    std::uint64_t magnitude = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude, base);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    using Limits = std::numeric_limits<Integer>;
    if (!negative || magnitude == 0) {
        if (magnitude > static_cast<std::uint64_t>(Limits::max())) return std::nullopt;
        return static_cast<Integer>(magnitude);
    }
    if (std::is_unsigned_v<Integer> || magnitude > static_cast<std::uint64_t>(Limits::max()) + 1)
        return std::nullopt;
    return static_cast<Integer>(-static_cast<std::int64_t>(magnitude - 1) - 1);
}

template <typename Integer> Integer parseInteger(const Parameter& parameter, const std::string& text) {
    if (const auto number = wholeNumber<Integer>(text)) return *number;
    using Limits = std::numeric_limits<Integer>;
    refuseText(parameter, text,
               "'" + printable(text) + "' is not a whole number from " + numberText(Limits::min()) + " to " +
                   numberText(Limits::max()) + " (decimal or 0x...)");
}

double parseDouble(const Parameter& parameter, const std::string& text) {
    std::string_view digits = text;
    if (digits.starts_with('+') && !digits.starts_with("+-")) digits.remove_prefix(1);
    double number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error == std::errc{} && end == digits.data() + digits.size() && std::isfinite(number)) return number;
    refuseText(parameter, text,
               "'" + printable(text) + "' is not a floating point number (such as 19.5 or 1e-3)");
}

std::int32_t parseEntry(const Parameter& parameter, const std::string& text) {
    if (const auto value = entryByName(parameter, text)) return *value;
    if (const auto number = wholeNumber<std::int32_t>(text)) return *number;
    refuseText(parameter, text,
               "'" + printable(text) + "' is neither an entry nor a number; the entries are " +
                   entriesText(parameter));
}

} // namespace

bool isArray(const Parameter& parameter) { return std::holds_alternative<Elements>(emptyValue(parameter)); }

Reading readValue(Instance& instance, const Parameter& parameter) {
    Reading reading{.value = emptyValue(parameter)};
    std::visit(
        [&](auto& value) {
            using T = std::decay_t<decltype(value)>;
            if constexpr (isNumber<T>) {
                reading.error = instance.applet().Fg_getParameterWithType(instance.fg(), parameter.id, &value,
                                                                          0, tagOf<T>());
            } else if constexpr (std::is_same_v<T, std::string>) {
                reading.error = readText(instance, parameter, value);
            }
        },
        reading.value);
    return reading;
}

int writeValue(Instance& instance, const Parameter& parameter, const Value& value) {
    return std::visit(
        [&](const auto& native) {
            using T = std::decay_t<decltype(native)>;
            const auto set = [&](const void* place, FgParamTypes tag) {
                return instance.applet().Fg_setParameterWithType(instance.fg(), parameter.id, place, 0, tag);
            };
            if constexpr (isNumber<T>) return set(&native, tagOf<T>());
            if constexpr (std::is_same_v<T, std::string>) return set(native.c_str(), FG_PARAM_TEXT);
            return static_cast<int>(FG_ERR_NOT_SUPPORTED); // arrays: parseValue gives none
        },
        value);
}

Value parseValue(const Parameter& parameter, const std::string& text) {
    if (parameter.kind() == REGISTER_KIND_ENUM) return parseEntry(parameter, text);
    return std::visit(
        [&](const auto& native) -> Value {
            using T = std::decay_t<decltype(native)>;
            if constexpr (std::is_same_v<T, Elements>) {
                refuseText(parameter, text,
                           "the parameter is an array of " + numberText(native.count) +
                               " elements, and arrays cannot be set here");
            } else if constexpr (std::is_same_v<T, std::string>) {
                return text;
            } else if constexpr (std::is_same_v<T, double>) {
                return parseDouble(parameter, text);
            } else {
                return parseInteger<T>(parameter, text);
            }
        },
        emptyValue(parameter));
}

std::string valueText(const Parameter& parameter, const Value& value) {
    return std::visit(
        [&](const auto& native) -> std::string {
            using T = std::decay_t<decltype(native)>;
            if constexpr (std::is_same_v<T, Elements>) return numberText(native.count) + " elements";
            if constexpr (std::is_same_v<T, std::string>) return "\"" + printable(native) + "\"";
            if constexpr (isNumber<T>) {
                for (const Entry& entry : entriesOf(parameter))
                    if (static_cast<T>(entry.value) == native) return entryName(entry);
                return numberText(native);
            }
        },
        value);
}

std::string valueWithUnit(const Parameter& parameter, const Value& value) {
    std::string text = valueText(parameter, value);
    const auto* number = std::get_if<std::int32_t>(&value);
    if (number != nullptr && text != numberText(*number)) text += " (" + numberText(*number) + ")";
    const std::string unit = parameter.unit();
    return unit.empty() || isArray(parameter) ? text : text + " " + unit;
}

void addValue(nlohmann::ordered_json& object, const Parameter& parameter, const Value& value) {
    std::visit(
        [&](const auto& native) {
            using T = std::decay_t<decltype(native)>;
            if constexpr (std::is_same_v<T, Elements>) {
                object["elements"] = native.count;
            } else {
                object["value"] = native;
            }
        },
        value);
    if (parameter.kind() != REGISTER_KIND_ENUM) return;
    for (const Entry& entry : entriesOf(parameter)) {
        if (entry.value != std::get<std::int32_t>(value)) continue;
        object["symbol"] = entry.symbol;
        object["label"] = entry.label;
        return;
    }
}

std::string numberText(double number) {
    char text[32];
    const auto [end, error] = std::to_chars(text, text + sizeof text, number);
    return error == std::errc{} ? std::string(text, end) : "?";
}

} // namespace appletctl
