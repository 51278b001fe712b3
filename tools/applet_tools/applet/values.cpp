#include "applet_tools/applet/values.h"

#include "applet_host/typed_access.h"
#include "applet_tools/applet/Effort.h"
#include "applet_tools/applet/published_limits.h"
#include "applet_tools/applet/units.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"

#include "vexo/type_tags.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <type_traits>

namespace applet_tools {
namespace {

/** Passes `elements` to a typed access: a single one as its own record, several as a run. */
template <typename Access> int accessElements(std::uint32_t first, Elements& elements, Access access) {
    if (elements.size() == 1) {
        FieldParameterInt_s element{.value = elements.front(), .index = first};
        const int error = access(&element, FG_PARAM_FIELD_INT);
        elements.front() = element.value;
        return error;
    }
    FieldParameterAccess run = applet_host::accessTo(first, elements);
    return access(&run, FG_PARAM_FIELD_ACCESS);
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

/** The text without its unit: "0.25ms" is "0.25e3" for a parameter in µs. */
std::string inOwnUnit(const Target& target, const std::string& text) {
    const auto converted = convertUnit(text, target.parameter->unit());
    if (!converted) return text;
    if (converted->number.empty()) throw UsageError(converted->reason);
    return converted->number;
}

template <typename Integer> Integer parseInteger(const Target& target, const std::string& text) {
    if (const auto number = wholeNumber<Integer>(text)) return *number;
    const std::string own = inOwnUnit(target, text);
    if (const auto number = wholeNumber<Integer>(own)) return *number;
    // A conversion such as 2000 ms = 2000e-3 seconds may give a whole number in another form.
    const auto converted = own != text ? floatingNumber(own) : std::nullopt;
    const std::string shown = converted ? numberText(*converted) : text;
    if (const auto number = wholeNumber<Integer>(shown)) return *number;
    using Limits = std::numeric_limits<Integer>;
    const std::string unit = target.parameter->unit();
    throw UsageError(inQuotedWord(shown) + " is not a whole number from " + numberText(Limits::min()) +
                     " to " + numberText(Limits::max()) + " (decimal or 0x..." +
                     (unit.empty() ? ")" : ", in " + unit + ")"));
}

double parseDouble(const Target& target, const std::string& text) {
    if (const auto number = floatingNumber(inOwnUnit(target, text))) return *number;
    const std::string unit = target.parameter->unit();
    throw UsageError(inQuotedWord(text) + " is not a floating point number (such as 19.5 or 1e-3" +
                     (unit.empty() ? ")" : ", in " + unit + ")"));
}

/** "; did you mean A (1) or B (2)?"; all entries if they are few or none is similar. */
std::string entriesNear(const Parameter& parameter, const std::string& text) {
    constexpr std::size_t few = 6;
    const std::vector<Entry> entries = entriesOf(parameter);
    std::vector<std::string> names, shown;
    for (const Entry& entry : entries) {
        names.push_back(entry.symbol);
        names.push_back(entry.label);
    }
    for (const std::string& name : nearestWords(text, names)) {
        const auto entry = std::ranges::find_if(
            entries, [&](const Entry& one) { return one.symbol == name || one.label == name; });
        const std::string asShown = entryName(*entry) + " (" + numberText(entry->value) + ")";
        if (std::ranges::find(shown, asShown) == shown.end()) shown.push_back(asShown);
    }
    const std::string nearest = didYouMean(shown);
    if (nearest.empty() || entries.size() <= few)
        return nearest + (nearest.empty() ? "; the entries are " : " The entries are ") +
               entriesText(parameter);
    return nearest + " 'appletctl limits " + parameter.name + "' shows all " + numberText(entries.size()) +
           " entries";
}

std::int32_t parseEntry(const Target& target, const std::string& text) {
    if (const auto value = entryByName(*target.parameter, text)) return *value;
    if (const auto number = wholeNumber<std::int32_t>(text)) return *number;
    throw UsageError(inQuotedWord(text) + " is neither an entry nor a number" +
                     entriesNear(*target.parameter, text));
}

/** "5" if all elements hold 5; else the first ones and their number. */
std::string elementsText(const Elements& elements) {
    if (std::all_of(elements.begin(), elements.end(), [&](auto e) { return e == elements.front(); }))
        return numberText(elements.front());
    constexpr std::size_t shown = 8;
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < std::min(shown, elements.size()); ++i)
        texts.push_back(numberText(elements[i]));
    if (elements.size() > shown) texts.push_back("... (" + numberText(elements.size()) + " elements)");
    return join(texts, ", ");
}

/** Throws UsageError with the reason. */
Value valueFrom(const Target& target, const std::string& text) {
    if (target.parameter->kind() == REGISTER_KIND_ENUM) return parseEntry(target, text);
    return std::visit(
        [&](const auto& native) -> Value {
            using T = std::decay_t<decltype(native)>;
            if constexpr (std::is_same_v<T, WholeArray>) {
                const std::string& name = target.parameter->name;
                throw UsageError("the parameter is an array of " + numberText(native.count) +
                                 " elements: name the elements to set, as " + name + "[100]=5 or " + name +
                                 "[0..255]=5");
            } else if constexpr (std::is_same_v<T, Elements>) {
                return Elements(native.size(), parseInteger<std::uint32_t>(target, text));
            } else if constexpr (std::is_same_v<T, std::string>) {
                if (text.find_first_of("\r\n") != std::string::npos)
                    throw UsageError(
                        "a text with a line break cannot be saved: the rest would become a line of its "
                        "own in a configuration file");
                return text;
            } else if constexpr (std::is_same_v<T, double>) {
                return parseDouble(target, text);
            } else {
                return parseInteger<T>(target, text);
            }
        },
        emptyValue(target));
}

} // namespace

Value emptyValue(const Target& target) {
    if (target.elements) return Elements(target.elements->count());
    const Parameter& parameter = *target.parameter;
    if (parameter.kind() == REGISTER_KIND_STRING) return std::string{};
    if (parameter.record != nullptr && applet_host::isArray(*parameter.record))
        return WholeArray{elementCount(parameter)};
    Value zero;
    applet_host::withNumberOf(parameter.kind(), [&](auto number) { zero = number; });
    return zero;
}

ReadResult readValue(Instance& instance, const Target& target) {
    ReadResult reading{.value = emptyValue(target)};
    const int id = target.parameter->id;
    const auto get = [&](void* destination, FgParamTypes tag) {
        return instance.applet().Fg_getParameterWithType(instance.fg(), id, destination, 0, tag);
    };
    std::visit(
        [&](auto& value) {
            using T = std::decay_t<decltype(value)>;
            if constexpr (std::is_arithmetic_v<T>) reading.error = get(&value, tagOf<T>);
            if constexpr (std::is_same_v<T, std::string>)
                reading.error = applet_host::readText(instance.applet(), instance.fg(), id, value);
            if constexpr (std::is_same_v<T, Elements>)
                reading.error = accessElements(target.elements->first, value, get);
        },
        reading.value);
    return reading;
}

Value valueOf(Instance& instance, const Target& target) {
    ReadResult reading = readValue(instance, target);
    if (reading.error == FG_OK) return std::move(reading.value);
    throw Failure(target.name() + " cannot be read: " + codeInWords(reading.error));
}

std::string explanationOf(Instance& instance, const Parameter& parameter) {
    // The query reads the name from the same variable in which it returns the pointer to the text.
    std::vector<char> buffer(std::max(parameter.name.size() + 1, sizeof(char*)));
    std::memcpy(buffer.data(), parameter.name.c_str(), parameter.name.size() + 1);
    const auto& applet = instance.applet();
    if (applet.Fg_getParameterWithType(instance.fg(), FG_PARAM_DESCR, buffer.data(), 0,
                                       FG_PARAM_ALLOCATED_STRING) != FG_OK)
        return "";
    char* text = nullptr;
    std::memcpy(&text, buffer.data(), sizeof text);
    const std::string explained = toUtf8(text);
    applet.Fg_freeParameterStringWithType(instance.fg(), FG_PARAM_DESCR, text, 0, FG_PARAM_ALLOCATED_STRING);
    return explained == "-" ? "" : explained;
}

int writeValue(Instance& instance, const Target& target, const Value& value) {
    ++effort().sets;
    const auto set = [&](const void* source, FgParamTypes tag) {
        return instance.applet().Fg_setParameterWithType(instance.fg(), target.parameter->id, source, 0, tag);
    };
    const int code = std::visit(
        [&](auto native) { // a copy: the record of a run has a pointer to non-const
            using T = std::decay_t<decltype(native)>;
            if constexpr (std::is_arithmetic_v<T>) return set(&native, tagOf<T>);
            if constexpr (std::is_same_v<T, std::string>) return set(native.c_str(), FG_PARAM_TEXT);
            if constexpr (std::is_same_v<T, Elements>)
                return accessElements(target.elements->first, native, set);
            return static_cast<int>(FG_ERR_NOT_SUPPORTED); // for a whole array: parseValue returns none
        },
        value);
    if (code != FG_OK) return code;
    instance.sets().insert(target.parameter->id);
    const bool isOffline = instance.device() == nullptr; // where some values cannot be read
    if (isOffline || !instance.loads().texts.empty()) instance.loads().setSince.insert(target.parameter->id);
    return code;
}

Value parseValue(const Target& target, const std::string& text, std::string_view relation) {
    constexpr std::size_t mostBytes = 100;
    try {
        return valueFrom(target, text);
    } catch (const UsageError& error) {
        throw UsageError(target.name() + std::string(relation) + shortened(printable(text), mostBytes) +
                         ": " + error.what());
    }
}

std::string valueText(const Parameter& parameter, const Value& value) {
    return std::visit(
        [&](const auto& native) -> std::string {
            using T = std::decay_t<decltype(native)>;
            if constexpr (std::is_same_v<T, WholeArray>) return numberText(native.count) + " elements";
            if constexpr (std::is_same_v<T, Elements>) return elementsText(native);
            if constexpr (std::is_same_v<T, std::string>) return quotedText(native);
            if constexpr (std::is_arithmetic_v<T>) {
                for (const Entry& entry : entriesOf(parameter))
                    if (static_cast<T>(entry.value) == native) return entryName(entry);
                return numberText(native);
            }
        },
        value);
}

std::string exactValueText(const Parameter& parameter, const Value& value) {
    const auto* number = std::get_if<double>(&value);
    return number != nullptr ? exactText(*number) : valueText(parameter, value);
}

std::string valueWithUnit(const Parameter& parameter, const Value& value) {
    std::string text = valueText(parameter, value);
    const auto* number = std::get_if<std::int32_t>(&value);
    if (number != nullptr && text != numberText(*number)) text += " (" + numberText(*number) + ")";
    const std::string unit = parameter.unit();
    return unit.empty() || std::holds_alternative<WholeArray>(value) ? text : text + " " + unit;
}

std::string exactValueWithUnit(const Parameter& parameter, const Value& value) {
    const auto* number = std::get_if<double>(&value);
    if (number == nullptr) return valueWithUnit(parameter, value);
    return exactText(*number) + (parameter.unit().empty() ? "" : " " + parameter.unit());
}

std::string shownReading(const Parameter& parameter, const ReadResult& reading) {
    if (!reading.isMeasured) return notMeasuredText;
    if (reading.error != FG_OK) return "- (" + codeInWords(reading.error) + ")";
    return valueWithUnit(parameter, reading.value);
}

void addValue(nlohmann::ordered_json& object, const Target& target, const Value& value) {
    std::visit(
        [&](const auto& native) {
            using T = std::decay_t<decltype(native)>;
            if constexpr (std::is_same_v<T, WholeArray>) {
                object["elements"] = native.count;
            } else if constexpr (std::is_same_v<T, Elements>) {
                const bool isOne = native.size() == 1;
                object[isOne ? "index" : "first"] = target.elements->first;
                if (isOne)
                    object["value"] = native.front();
                else
                    object["values"] = native;
            } else if constexpr (std::is_same_v<T, std::string>) {
                object["value"] = toUtf8(native);
            } else {
                object["value"] = native;
            }
        },
        value);
    const auto* const number = std::get_if<std::int32_t>(&value); // other values are not entries
    if (target.parameter->kind() != REGISTER_KIND_ENUM || number == nullptr) return;
    for (const Entry& entry : entriesOf(*target.parameter)) {
        if (entry.value != *number) continue;
        object["symbol"] = entry.symbol;
        object["label"] = entry.label;
        return;
    }
}

void addReading(nlohmann::ordered_json& object, const Target& target, const ReadResult& reading) {
    if (!reading.isMeasured) {
        object["value"] = nullptr;
        object["measured"] = false;
    } else if (reading.error == FG_OK) {
        addValue(object, target, reading.value);
    } else {
        object["error"] = codeAsJson(reading.error);
    }
}

nlohmann::ordered_json valueAsJson(const Target& target, const Value& value) {
    nlohmann::ordered_json object;
    addValue(object, target, value);
    return object;
}

bool operator==(const Value& a, const Value& b) {
    const NativeValue &first = a, &second = b;
    return first == second || (isUndefined(a) && isUndefined(b));
}

bool isUndefined(const Value& value) {
    const auto* number = std::get_if<double>(&value);
    return number != nullptr && std::isnan(*number);
}

bool isNumber(const Value& value) {
    return std::visit([](const auto& native) { return std::is_arithmetic_v<std::decay_t<decltype(native)>>; },
                      value);
}

double asDouble(const Value& number) {
    return std::visit(
        [](const auto& native) {
            if constexpr (std::is_arithmetic_v<std::decay_t<decltype(native)>>)
                return static_cast<double>(native);
            else
                return 0.0;
        },
        number);
}

nlohmann::ordered_json numberAsJson(const Value& number) {
    return std::visit(
        [](const auto& native) -> nlohmann::ordered_json {
            if constexpr (std::is_arithmetic_v<std::decay_t<decltype(native)>>)
                return native;
            else
                return nullptr;
        },
        number);
}

nlohmann::ordered_json readingAsJson(const Target& target, const ReadResult& reading) {
    const Parameter& parameter = *target.parameter;
    nlohmann::ordered_json row = {{"name", parameter.name}, {"id", parameter.id}, {"unit", parameter.unit()}};
    addReading(row, target, reading);
    return row;
}

} // namespace applet_tools
