// Parameters: names, descriptions, values.

#include "applet_tools/answers/order.h"
#include "applet_tools/applet/published_limits.h"
#include "applet_tools/applet/values.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/BoardState.h"
#include "applet_tools/scratch/ValuesBefore.h"
#include "host/Station.h"
#include "host/refusal.h"

#include "vexo/fg_errors.h"

#include <cmath>
#include <cstring>
#include <optional>
#include <utility>

using namespace host;

namespace {

using applet_tools::Assignment, applet_tools::Elements, applet_tools::Target, applet_tools::Value;

[[noreturn]] void throwOtherKind(const ParameterRow& row, const char* wanted) {
    static constexpr const char* kinds[] = {"",
                                            "a 32-bit number",
                                            "an unsigned 32-bit number",
                                            "a 64-bit number",
                                            "an unsigned 64-bit number",
                                            "a number with a fraction",
                                            "a text",
                                            "an enumeration",
                                            "an array"};
    throw Error(VEXO_ERR_KIND, row.parameter->name + " is " + kinds[row.kind] + ", not " + wanted);
}

/* Numbers. */

[[noreturn]] void throwNoFit(const ParameterRow& row, const std::string& value) {
    throw Error(VEXO_ERR_VALUE,
                row.parameter->name + ": " + value + " does not fit in the type of the value");
}

/** The number in another type; empty if it does not fit. */
template <typename To, typename From> std::optional<To> converted(From value) {
    if constexpr (std::is_floating_point_v<To>) {
        return static_cast<To>(value);
    } else if constexpr (std::is_floating_point_v<From>) {
        // The upper limit is a power of two, which a double holds exactly.
        const double end = std::ldexp(1.0, std::numeric_limits<To>::digits);
        const bool isWithin = value < end && value >= static_cast<From>(std::numeric_limits<To>::min());
        return isWithin && value == std::trunc(value) ? std::optional(static_cast<To>(value)) : std::nullopt;
    } else {
        return std::in_range<To>(value) ? std::optional(static_cast<To>(value)) : std::nullopt;
    }
}

/** A number in the parameter's own type, as the applet writes it. */
union RawNumber {
    std::uint64_t u64;
    std::int32_t i32;
    std::uint32_t u32;
    std::int64_t i64;
    double f64;
};

[[noreturn]] void throwUnread(const ParameterRow& row, int code) {
    throw Error(code, row.parameter->name + " cannot be read: " + applet_tools::codeInWords(code));
}

template <typename To, typename From> int give(const ParameterRow& row, From number, To& value) noexcept {
    if constexpr (std::is_same_v<To, From>) {
        value = number;
        return VEXO_OK;
    } else {
        if (const auto fitting = converted<To>(number)) {
            value = *fitting;
            return VEXO_OK;
        }
        return guarded([&]() -> int { throwNoFit(row, applet_tools::exactText(number)); });
    }
}

/** Fast path for reads of numbers: no lock, no allocation. */
template <typename To> int getNumber(vexo_station* station, int id, To* value) noexcept {
    if (station == nullptr || value == nullptr)
        return failNull(station == nullptr ? "the station" : "the pointer for the value");
    const ParameterRow* const row = station->table.find(id);
    if (row == nullptr) return id < 0 ? id : guarded([&]() -> int { return rowOf(*station, id).id; });
    if (!row->isNumber) return guarded([&]() -> int { throwOtherKind(*row, "a number"); });
    RawNumber raw{.u64 = 0}; // the applet writes nothing in some states that have no value
    int code = VEXO_OK;
    try {
        code = station->get(station->fg, id, &raw, 0, row->tag);
    } catch (...) {
        return recordFailure();
    }
    if (code != FG_OK) return guarded([&]() -> int { throwUnread(*row, code); });
    switch (row->kind) {
    case VEXO_INT32:
    case VEXO_ENUM:
        return give(*row, raw.i32, *value);
    case VEXO_INT64:
        return give(*row, raw.i64, *value);
    case VEXO_UINT64:
        return give(*row, raw.u64, *value);
    case VEXO_DOUBLE:
        return give(*row, raw.f64, *value);
    default:
        return give(*row, raw.u32, *value);
    }
}

template <typename From> int setNumber(vexo_station* station, int id, From number) noexcept {
    return onParameter(station, id, [&](vexo_station& own, const ParameterRow& row) {
        if (!row.isNumber) throwOtherKind(row, "a number");
        const Target target{row.parameter};
        if constexpr (std::is_floating_point_v<From>)
            if (std::isnan(number)) {
                requireWritable(own, ("a set of " + row.parameter->name).c_str());
                parseValue(target, "nan"); // throws: no text is such a value either
            }
        const std::string text = applet_tools::exactText(number);
        const auto native = [&](const auto& empty) -> Value {
            using T = std::decay_t<decltype(empty)>;
            if constexpr (std::is_arithmetic_v<T>) {
                if (const auto fitting = converted<T>(number)) return *fitting;
                requireWritable(own, ("a set of " + row.parameter->name).c_str());
                throw noFitRefusal(own, {target, text, number});
            }
            throwOtherKind(row, "a number");
        };
        set(own, {target, text, std::visit(native, emptyValue(target))});
    });
}

/* Texts. */

std::string textOf(vexo_station& station, const ParameterRow& row) {
    const Target target = row.hasElements ? applet_tools::wholeOf(*row.parameter) : Target{row.parameter};
    const Value value = valueOf(station.instance, target);
    if (const auto* text = std::get_if<std::string>(&value)) return applet_tools::toUtf8(*text);
    const auto* elements = std::get_if<Elements>(&value);
    if (elements == nullptr) return exactValueText(*row.parameter, value);
    std::string text;
    for (const std::uint32_t element : *elements)
        text += (text.empty() ? "" : ",") + std::to_string(element);
    return text;
}

/** Parses the text as a value. Throws UsageError for a text that is not a value, and Error for a number that does not fit. */
Assignment assignmentOf(vexo_station& station, const Target& target, const std::string& text) {
    try {
        return {target, text, parseValue(target, text)};
    } catch (const applet_tools::UsageError&) {
        const bool isNumber =
            target.parameter->kind() != REGISTER_KIND_ENUM && applet_tools::isNumber(emptyValue(target));
        const auto number = isNumber ? applet_tools::floatingNumber(text) : std::nullopt;
        if (!number) throw;
        throw noFitRefusal(station, {target, text, *number});
    }
}

/** Returns the range of elements. Throws Error for a parameter without elements, and for elements outside the field. */
Target elementsOf(const ParameterRow& row, std::uint32_t first, std::uint32_t count) {
    if (!row.hasElements) throwOtherKind(row, "an array of unsigned 32-bit numbers");
    const std::uint32_t all = elementCount(*row.parameter);
    if (count == 0 || first >= all || count > all - first)
        throw Error(VEXO_ERR_ARGUMENT, row.parameter->name + " has " + std::to_string(all) + " elements; " +
                                           std::to_string(count) + " from element " + std::to_string(first) +
                                           " on were requested");
    return {row.parameter, applet_tools::ElementRange{first, first + count - 1}};
}

/* Descriptions. */

void describe(const ParameterRow& row, vexo_parameter& parameter) {
    const RegisterInfo* const record = row.parameter->record;
    parameter = {.id = row.id,
                 .kind = row.kind,
                 .access = record != nullptr ? record->access : 0,
                 .elements = elementCount(*row.parameter),
                 .entries = static_cast<std::uint32_t>(row.entries.size()),
                 .name = row.parameter->name.c_str(),
                 .label = row.label.c_str(),
                 .unit = row.unit.c_str(),
                 .description = row.description.c_str(),
                 .group = row.group.c_str(),
                 .read_effect = row.readEffect.c_str(),
                 .set_effect = row.setEffect.c_str()};
}

/* Many at once. */

/** Sets all of them. If one is refused, restores the others and returns the refusal. */
std::optional<Error> trySetAll(vexo_station& station, const applet_tools::Words& words, bool wantsAdvice) {
    applet_tools::ValuesBefore before(station.live, words);
    std::optional<Error> refusal;
    const auto after = [&](const applet_tools::AssignmentResult& result) {
        if (result.code != FG_OK) refusal.emplace(refusalOf(station, result, wantsAdvice));
    };
    applyAssignments(station.instance, station.live.parameters(), words, {.after = after});
    if (refusal && words.size() > 1) before.restore();
    return refusal;
}

} // namespace

int vexo_id(vexo_station* station, const char* name) {
    if (name == nullptr) return failNull("the name");
    int id = station != nullptr ? station->table.idOf(name) : 0;
    if (id > 0) return id;
    const int code = onLocked(station, [&](vexo_station& own) { id = own.live.parameters().find(name).id; });
    return code == VEXO_OK ? id : code;
}

uint32_t vexo_count(vexo_station* station) {
    return station != nullptr ? static_cast<std::uint32_t>(station->table.rows().size()) : 0;
}

int vexo_parameter_at(vexo_station* station, uint32_t index, vexo_parameter* parameter) {
    if (parameter == nullptr) return failNull("the pointer for the parameter");
    return onLocked(station, [&](vexo_station& own) {
        const std::vector<ParameterRow>& rows = own.table.rows();
        if (index >= rows.size())
            throw Error(VEXO_ERR_NAME, "there is no parameter " + std::to_string(index) +
                                           "; they count from 0 to " + std::to_string(rows.size() - 1));
        describe(rows[index], *parameter);
    });
}

int vexo_describe(vexo_station* station, int id, vexo_parameter* parameter) {
    if (parameter == nullptr) return failNull("the pointer for the parameter");
    return onParameter(station, id,
                       [&](vexo_station&, const ParameterRow& row) { describe(row, *parameter); });
}

int vexo_entry_at(vexo_station* station, int id, uint32_t index, vexo_entry* entry) {
    if (entry == nullptr) return failNull("the pointer for the entry");
    return onParameter(station, id, [&](vexo_station&, const ParameterRow& row) {
        if (row.kind != VEXO_ENUM) throwOtherKind(row, "an enumeration");
        if (index >= row.entries.size())
            throw Error(VEXO_ERR_NAME, row.parameter->name + " has " + std::to_string(row.entries.size()) +
                                           " entries; number " + std::to_string(index) + " was requested");
        const applet_tools::Entry& found = row.entries[index];
        *entry = {.value = found.value, .symbol = found.symbol.c_str(), .label = found.label.c_str()};
    });
}

int vexo_get_range(vexo_station* station, int id, vexo_range* range) {
    if (range == nullptr) return failNull("the pointer for the range");
    return onParameter(station, id, [&](vexo_station&, const ParameterRow& row) {
        const auto limits = limitsOf(*row.parameter);
        if (!limits) throwOtherKind(row, "a number with limits");
        *range = {.minimum = asDouble(limits->minimum),
                  .maximum = asDouble(limits->maximum),
                  .step = row.isNumber ? asDouble(limits->increment) : 1};
    });
}

int vexo_get_access(vexo_station* station, int id, uint32_t* access) {
    if (access == nullptr) return failNull("the pointer for the access");
    return onParameter(station, id, [&](vexo_station&, const ParameterRow& row) {
        *access = row.parameter->record != nullptr ? row.parameter->record->access : 0;
    });
}

int vexo_get_int(vexo_station* station, int id, int64_t* value) { return getNumber(station, id, value); }
int vexo_get_uint(vexo_station* station, int id, uint64_t* value) { return getNumber(station, id, value); }
int vexo_get_double(vexo_station* station, int id, double* value) { return getNumber(station, id, value); }

int vexo_get_text(vexo_station* station, int id, char* buffer, size_t* size) {
    if (size == nullptr) return failNull("the size");
    if (buffer == nullptr && *size > 0) return failNull("the buffer");
    return onParameter(station, id, [&](vexo_station& own, const ParameterRow& row) {
        const std::string text = textOf(own, row);
        const std::size_t room = std::exchange(*size, text.size() + 1);
        if (room < *size)
            throw Error(VEXO_ERR_SPACE, row.parameter->name + " needs " + std::to_string(*size) +
                                            " bytes, and the buffer has " + std::to_string(room));
        std::memcpy(buffer, text.c_str(), *size);
    });
}

int vexo_get_field(vexo_station* station, int id, uint32_t first, uint32_t count, uint32_t* values) {
    if (values == nullptr && count > 0) return failNull("the pointer for the elements");
    return onParameter(station, id, [&](vexo_station& own, const ParameterRow& row) {
        static_cast<void>(elementsOf(row, first, count));
        FieldParameterAccess run{.vtype = FG_PARAM_UINT32, .index = first, .count = count, .values = values};
        const int code = own.get(own.fg, id, &run, 0, FG_PARAM_FIELD_ACCESS);
        if (code != FG_OK) throwUnread(row, code);
    });
}

int vexo_set_int(vexo_station* station, int id, int64_t value) { return setNumber(station, id, value); }
int vexo_set_uint(vexo_station* station, int id, uint64_t value) { return setNumber(station, id, value); }
int vexo_set_double(vexo_station* station, int id, double value) { return setNumber(station, id, value); }

int vexo_set_text(vexo_station* station, int id, const char* text) {
    if (text == nullptr) return failNull("the text");
    return onParameter(station, id, [&](vexo_station& own, const ParameterRow& row) {
        const Target target = row.hasElements ? applet_tools::wholeOf(*row.parameter) : Target{row.parameter};
        requireWritable(own, ("a set of " + row.parameter->name).c_str());
        set(own, assignmentOf(own, target, text));
    });
}

int vexo_set_field(vexo_station* station, int id, uint32_t first, uint32_t count, const uint32_t* values) {
    if (values == nullptr && count > 0) return failNull("the elements");
    return onParameter(station, id, [&](vexo_station& own, const ParameterRow& row) {
        const Target target = elementsOf(row, first, count);
        set(own, {target, std::to_string(*values), Elements(values, values + count)});
    });
}

int vexo_set_all(vexo_station* station, const char* const* assignments, size_t count, int order) {
    if (assignments == nullptr && count > 0) return failNull("the list of assignments");
    if (order != VEXO_GIVEN_ORDER && order != VEXO_ANY_ORDER)
        return fail(VEXO_ERR_ARGUMENT, "the order is neither VEXO_GIVEN_ORDER nor VEXO_ANY_ORDER");
    return onLocked(station, [&](vexo_station& own) {
        const applet_tools::Words words = wordsOf(assignments, count);
        requireWritable(own, "a set of parameters");
        for (const std::string& word : words)
            if (const std::size_t equals = word.find('='); equals != std::string::npos && equals > 0)
                assignmentOf(own, findTarget(own.live.parameters(), word.substr(0, equals)),
                             word.substr(equals + 1));
        const bool isLast = order == VEXO_GIVEN_ORDER;
        std::optional<Error> refusal = trySetAll(own, words, isLast);
        if (refusal && !isLast) {
            const applet_tools::Ordering found = askOrder(asking(own), words);
            if (!found.isComplete)
                throw Error(refusal->code, applet_tools::join(found.problems, "; ") + "; nothing was set",
                            refusal->members);
            refusal = trySetAll(own, found.words, true);
        }
        if (refusal) throw Error(*refusal);
    });
}
