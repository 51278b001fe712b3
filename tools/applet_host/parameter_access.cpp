#include "applet_host/parameter_access.h"

#include "applet_host/codes.h"
#include "applet_host/record.h"
#include "applet_host/text_encoding.h"
#include "applet_host/typed_access.h"
#include "vexo/fg_errors.h"
#include "vexo/type_tags.hpp"

#include <algorithm>
#include <limits>
#include <locale>
#include <optional>
#include <set>
#include <sstream>
#include <utility>

namespace applet_host {
namespace {

Value inOwnKind(double value) { return value; }
template <typename T> Value inOwnKind(T value) {
    constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
    if constexpr (std::is_same_v<T, std::uint64_t>)
        return static_cast<std::int64_t>(std::min(value, most));
    else
        return static_cast<std::int64_t>(value);
}

/** A limit of a record that the applet may change meanwhile, with one store. */
template <typename Number> Number present(const Number& limit) {
    Number number{};
    __atomic_load(&limit, &number, __ATOMIC_RELAXED);
    return number;
}

/** The limits of a number; those of its type if the record has no usable ones. */
template <typename Published> Limits scalarLimits(const Published& published) {
    using Number = std::decay_t<decltype(published.minimum)>;
    Published limits{};
    limits.minimum = present(published.minimum);
    limits.maximum = present(published.maximum);
    limits.increment = present(published.increment);
    if (areUsable(limits))
        return {inOwnKind(limits.minimum), inOwnKind(limits.maximum),
                inOwnKind(limits.increment > 0 ? limits.increment : Number{1})};
    return {inOwnKind(std::numeric_limits<Number>::lowest()), inOwnKind(std::numeric_limits<Number>::max()),
            inOwnKind(Number{1})};
}

Limits limitsOf(const RegisterInfo& record) {
    Limits result;
    withLimits(record, [&](const auto& published) {
        if constexpr (!isArrayLimits<decltype(published)>) result = scalarLimits(published);
    });
    return result;
}

[[noreturn]] void refuse(const RegisterInfo& record, const Value& value, int code) {
    std::string text = toUtf8(record.name) + " = " + textOf(value) + " was refused: " + codeInWords(code);
    if (record.kind == REGISTER_KIND_ENUM) {
        text += "; its values are";
        std::string separator = " ";
        for (const EnumEntry& entry : entriesOf(record)) {
            text += separator + std::to_string(entry.value);
            separator = ", ";
        }
    } else if (std::holds_alternative<std::int64_t>(value) || std::holds_alternative<double>(value)) {
        const Limits limits = limitsOf(record);
        text += "; the present limits are " + textOf(limits.minimum) + " to " + textOf(limits.maximum) +
                " in steps of " + textOf(limits.increment);
        if (const std::string unit = toUtf8(record.unit); !unit.empty()) text += ' ' + unit;
    } else if (const auto* table = std::get_if<std::vector<std::uint32_t>>(&value)) {
        const std::uint32_t minimum = record.value.u32Field.minimum, maximum = record.value.u32Field.maximum;
        const auto outside = std::ranges::find_if(
            *table, [&](std::uint32_t element) { return element < minimum || element > maximum; });
        if (outside != table->end())
            text += "; element " + std::to_string(outside - table->begin()) + " is " +
                    std::to_string(*outside) + ", its limits are " + std::to_string(minimum) + " to " +
                    std::to_string(maximum);
    }
    throw Refused(code, text);
}

/** The number in the applet's type, if the value is one and fits. */
template <typename Number> std::optional<Number> numberFrom(const Value& value) {
    if constexpr (std::is_same_v<Number, double>) {
        const auto* real = std::get_if<double>(&value);
        return real != nullptr ? std::optional(*real) : std::nullopt;
    } else {
        const auto* integer = std::get_if<std::int64_t>(&value);
        const bool fits = integer != nullptr && std::in_range<Number>(*integer);
        return fits ? std::optional(static_cast<Number>(*integer)) : std::nullopt;
    }
}

/** Whether the value has the type in which values of the kind are read and written. */
bool isOfKind(const RegisterInfo& record, const Value& value) {
    switch (record.kind) {
    case REGISTER_KIND_STRING:
        return std::holds_alternative<std::string>(value);
    case REGISTER_KIND_UINT_FIELD: {
        const auto* table = std::get_if<std::vector<std::uint32_t>>(&value);
        return table != nullptr && table->size() == elementCount(record);
    }
    case REGISTER_KIND_DOUBLE:
        return std::holds_alternative<double>(value);
    default:
        return std::holds_alternative<std::int64_t>(value);
    }
}

/** The entries, each with a name of its own: an entry without symbol is called by its number, and of entries with
 *  the same symbol the first remains. */
std::vector<Entry> namedEntries(const RegisterInfo& record) {
    std::vector<Entry> entries;
    std::set<std::string> names;
    for (const EnumEntry& entry : entriesOf(record)) {
        const std::string name = entry.symbol.empty() ? "Value" + std::to_string(entry.value) : entry.symbol;
        if (names.insert(name).second) entries.push_back({name, entry.value, entry.label});
    }
    return entries;
}

} // namespace

bool ParameterState::isWritable(bool isAcquiring) const {
    if ((access & REGISTER_ACCESS_WRITE) == 0) return false;
    return !isAcquiring || (access & REGISTER_ACCESS_WRITE_WHILE_ACQUIRING) != 0;
}

std::string textOf(const Value& value) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(15);
    if (const auto* integer = std::get_if<std::int64_t>(&value)) text << *integer;
    if (const auto* real = std::get_if<double>(&value)) text << *real;
    if (const auto* word = std::get_if<std::string>(&value)) text << '"' << *word << '"';
    if (const auto* table = std::get_if<std::vector<std::uint32_t>>(&value))
        text << table->size() << " elements";
    return text.str();
}

Parameter describe(const RegisterInfo& record, const std::string& path) {
    return {.name = toUtf8(record.name),
            .path = path,
            .label = toUtf8(record.displayName),
            .description = toUtf8(record.description),
            .unit = toUtf8(record.unit),
            .kind = record.kind,
            .elements = elementCount(record),
            .entries = namedEntries(record)};
}

ParameterState stateOf(const RegisterInfo& record) {
    return {limitsOf(record), __atomic_load_n(&record.access, __ATOMIC_RELAXED)};
}

Value readValue(const AppletFunctions& applet, Fg_Struct* fg, const RegisterInfo& record) {
    Value value;
    int code = FG_OK;
    if (record.kind == REGISTER_KIND_STRING) {
        std::string text;
        code = readText(applet, fg, record.id, text);
        value = std::move(text);
    } else if (record.kind == REGISTER_KIND_UINT_FIELD) {
        std::vector<std::uint32_t> elements(elementCount(record));
        FieldParameterAccess access = accessTo(0, elements);
        code = applet.Fg_getParameterWithType(fg, record.id, &access, 0, FG_PARAM_FIELD_ACCESS);
        value = std::move(elements);
    } else {
        withNumberOf(record.kind, [&](auto number) {
            using Number = decltype(number);
            code = applet.Fg_getParameterWithType(fg, record.id, &number, 0, tagOf<Number>);
            if constexpr (std::is_same_v<Number, double>)
                value = number;
            else
                value = static_cast<std::int64_t>(number);
        });
    }
    if (code != FG_OK) throw Refused(code, toUtf8(record.name) + " cannot be read: " + codeInWords(code));
    return value;
}

void writeValue(const AppletFunctions& applet, Fg_Struct* fg, const RegisterInfo& record,
                const Value& value) {
    if (!isOfKind(record, value)) refuse(record, value, FG_ERR_INVALID_ARGUMENT);
    int code = FG_OK;
    if (const auto* text = std::get_if<std::string>(&value)) {
        code = applet.Fg_setParameterWithType(fg, record.id, text->c_str(), 0, FG_PARAM_TEXT);
    } else if (const auto* table = std::get_if<std::vector<std::uint32_t>>(&value)) {
        std::vector<std::uint32_t> elements = *table;
        FieldParameterAccess access = accessTo(0, elements);
        code = applet.Fg_setParameterWithType(fg, record.id, &access, 0, FG_PARAM_FIELD_ACCESS);
    } else {
        withNumberOf(record.kind, [&](auto zero) {
            using Number = decltype(zero);
            const std::optional<Number> number = numberFrom<Number>(value);
            code = FG_ERR_OUT_OF_RANGE;
            if (number) code = applet.Fg_setParameterWithType(fg, record.id, &*number, 0, tagOf<Number>);
        });
    }
    if (code != FG_OK) refuse(record, value, code);
}

std::vector<EventName> eventNames(const AppletFunctions& applet, Fg_Struct* fg) {
    std::vector<EventName> events;
    constexpr unsigned most = 64; // bits of a mask
    for (unsigned i = 0; i < most; ++i) {
        const std::uint64_t mask = std::uint64_t{1} << i;
        if (const char* name = applet.Fg_getEventName(fg, mask)) events.push_back({mask, toUtf8(name)});
    }
    return events;
}

} // namespace applet_host
