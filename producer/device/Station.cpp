#include "device/Station.h"

#include "applet_host/latin1.h"
#include "base/Error.h"
#include "device/station_file.h"
#include "vexo/type_tags.hpp"

#include <algorithm>
#include <limits>
#include <sstream>
#include <utility>

namespace producer {
namespace {

/** Calls the function with the record's limits, in the type of its kind; not at all if there are none. */
template <typename Function> void withNumbers(const RegisterInfo& record, Function function) {
    const RegisterInfoValue& value = record.value;
    switch (record.kind) {
    case REGISTER_KIND_UINT:
        return function(value.u32);
    case REGISTER_KIND_INT:
        return function(value.i32);
    case REGISTER_KIND_UINT64:
        return function(value.u64);
    case REGISTER_KIND_INT64:
        return function(value.i64);
    case REGISTER_KIND_DOUBLE:
        return function(value.f64);
    default:
        return;
    }
}

Value inOwnKind(double value) { return value; }
template <typename T> Value inOwnKind(T value) {
    constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
    if constexpr (std::is_same_v<T, std::uint64_t>)
        return static_cast<std::int64_t>(std::min(value, most));
    else
        return static_cast<std::int64_t>(value);
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

const char* reasonOf(int code) {
    switch (code) {
    case FG_ERR_OUT_OF_RANGE:
        return "value out of range";
    case FG_ERR_GRANULARITY:
        return "value not on the parameter's grid";
    case FG_ERR_NOT_AVAILABLE:
        return "the parameter can only be read";
    default:
        return "the applet or the board failed";
    }
}

GC_ERROR codeOf(int code) {
    if (code == FG_ERR_OUT_OF_RANGE || code == FG_ERR_GRANULARITY) return GC_ERR_INVALID_VALUE;
    return code == FG_ERR_NOT_AVAILABLE ? GC_ERR_ACCESS_DENIED : GC_ERR_IO;
}

[[noreturn]] void refuse(const Parameter& parameter, const Value& value, int code) {
    std::string text = parameter.name + " = " + textOf(value) + " was refused: " + std::to_string(code) +
                       ", " + reasonOf(code);
    if (parameter.record->kind == REGISTER_KIND_ENUM) {
        text += "; its values are";
        const auto& entries = parameter.record->value.enumeration;
        for (int i = 0; i < entries.entryCount; ++i)
            text += (i > 0 ? ", " : " ") + std::to_string(entries.values[i]);
    } else if (std::holds_alternative<std::int64_t>(value) || std::holds_alternative<double>(value)) {
        const Limits limits = Station::limits(parameter);
        text += "; the present limits are " + textOf(limits.minimum) + " to " + textOf(limits.maximum) +
                " in steps of " + textOf(limits.increment);
        if (const std::string unit = toUtf8(parameter.record->unit); !unit.empty()) text += ' ' + unit;
    }
    throw Error(codeOf(code), text);
}

/** Calls the function with a zero of the applet's type for a number's kind. */
template <typename Function> void withNative(std::int32_t kind, Function function) {
    switch (kind) {
    case REGISTER_KIND_UINT:
        return function(std::uint32_t{});
    case REGISTER_KIND_ENUM:
    case REGISTER_KIND_INT:
        return function(std::int32_t{});
    case REGISTER_KIND_UINT64:
        return function(std::uint64_t{});
    case REGISTER_KIND_INT64:
        return function(std::int64_t{});
    default:
        return function(double{});
    }
}

} // namespace

std::string toUtf8(const char* text) { return applet_host::utf8FromLatin1(text != nullptr ? text : ""); }

Station::Station(Libraries libraries) : m_libraries(std::move(libraries)), m_session(*m_libraries) {
    if (m_session.error != 0 || m_session.handle.object == nullptr)
        throw Error(GC_ERR_IO, "the applet does not come up: its code is " + std::to_string(m_session.error));
    board().log_kinds(device(), 0);
    for (const RegisterInfo* record = applet().Fg_getParameterInfo(fg(), 0); record != nullptr;
         record = record->next)
        collect(*record, "");
    collectEvents();
    connectMachine();
}

void Station::connectMachine() {
    if (setUpStationFile(*this)) return;
    // Without a station file the board has no camera: the simulator replaces it, and follows the camera trigger.
    set("FG_CAMERASIMULATOR_ENABLE", std::int64_t{FG_CAMERASIMULATOR});
    set("FG_CAMERASIMULATOR_TRIGGER_MODE", std::int64_t{RISING_EDGE_TRIGGERS_LINE});
    // A belt with parts on it. The inputs are those of the applet's default trigger sources.
    constexpr std::uint64_t millisecond = 125'000; // ticks
    constexpr unsigned lightBarrier = 0, trackA = 1, trackB = 2;
    constexpr std::int32_t quarterSteps = 20'000; // per second
    const vboard_speed speed{1, quarterSteps, quarterSteps};
    board().wave_encoder(device(), trackA, trackB, &speed, 1);
    board().wave_square(device(), lightBarrier, 100 * millisecond, 500 * millisecond, 250 * millisecond);
}

void Station::collect(const RegisterInfo& record, const std::string& path) {
    if (record.kind != REGISTER_KIND_GROUP) {
        if (record.name != nullptr) m_parameters.push_back({toUtf8(record.name), &record, path});
        return;
    }
    const std::string inner = (path.empty() ? "" : path + '\n') + toUtf8(record.displayName);
    for (int i = 0; i < record.value.group.childCount; ++i)
        collect(*record.value.group.children[i], inner);
}

void Station::collectEvents() {
    constexpr std::uint64_t most = 64; // bits of a mask
    for (std::uint64_t i = 0; i < most; ++i) {
        const std::uint64_t mask = std::uint64_t{1} << i;
        const char* const name = applet().Fg_getEventName(fg(), mask);
        if (name != nullptr) m_events.push_back({i + 1, mask, toUtf8(name)});
    }
}

const EventKind* Station::eventOfDesign(const char* designName) {
    const auto known = m_designEvents.find(designName);
    if (known != m_designEvents.end()) return known->second;
    const std::uint64_t mask = applet().Fg_getEventMask(fg(), designName);
    const auto found = std::ranges::find(m_events, mask, &EventKind::mask);
    return m_designEvents[designName] = found != m_events.end() ? &*found : nullptr;
}

const Parameter* Station::find(const std::string& name) const {
    const auto found = std::ranges::find(m_parameters, name, &Parameter::name);
    return found != m_parameters.end() ? &*found : nullptr;
}

const Parameter& Station::known(const char* name) const {
    if (const Parameter* parameter = find(name)) return *parameter;
    throw Error(GC_ERR_NOT_AVAILABLE, std::string("the applet has no parameter ") + name);
}

Value Station::get(const Parameter& parameter) const {
    const RegisterInfo& record = *parameter.record;
    Value value;
    int code = FG_OK;
    if (record.kind == REGISTER_KIND_STRING) {
        char* text = nullptr;
        code = applet().Fg_getParameterWithType(fg(), record.id, &text, 0, FG_PARAM_ALLOCATED_STRING);
        if (code == FG_OK) {
            value = std::string(text);
            applet().Fg_freeParameterStringWithType(fg(), record.id, text, 0, FG_PARAM_ALLOCATED_STRING);
        }
    } else if (record.kind == REGISTER_KIND_UINT_FIELD) {
        std::vector<std::uint32_t> elements(static_cast<std::size_t>(record.value.u32Field.elementCount));
        FieldParameterAccess access{FG_PARAM_UINT32, 0, static_cast<std::uint32_t>(elements.size()),
                                    elements.data()};
        code = applet().Fg_getParameterWithType(fg(), record.id, &access, 0, FG_PARAM_FIELD_ACCESS);
        value = std::move(elements);
    } else {
        withNative(record.kind, [&](auto number) {
            using Number = decltype(number);
            code = applet().Fg_getParameterWithType(fg(), record.id, &number, 0, tagOf<Number>);
            if constexpr (std::is_same_v<Number, double>)
                value = number;
            else
                value = static_cast<std::int64_t>(number);
        });
    }
    if (code != FG_OK)
        throw Error(GC_ERR_IO,
                    parameter.name + " cannot be read: " + std::to_string(code) + ", " + reasonOf(code));
    return value;
}

std::int64_t Station::integer(const char* name) const { return std::get<std::int64_t>(get(known(name))); }

double Station::real(const char* name) const { return std::get<double>(get(known(name))); }

void Station::set(const char* name, const Value& value) const { set(known(name), value); }

void Station::set(const Parameter& parameter, const Value& value) const {
    const RegisterInfo& record = *parameter.record;
    int code = FG_OK;
    if (const auto* text = std::get_if<std::string>(&value)) {
        code = applet().Fg_setParameterWithType(fg(), record.id, text->c_str(), 0, FG_PARAM_TEXT);
    } else if (const auto* table = std::get_if<std::vector<std::uint32_t>>(&value)) {
        std::vector<std::uint32_t> elements = *table;
        FieldParameterAccess access{FG_PARAM_UINT32, 0, static_cast<std::uint32_t>(elements.size()),
                                    elements.data()};
        code = applet().Fg_setParameterWithType(fg(), record.id, &access, 0, FG_PARAM_FIELD_ACCESS);
    } else {
        withNative(record.kind, [&](auto number) {
            using Number = decltype(number);
            if constexpr (std::is_same_v<Number, double>) {
                number = std::get<double>(value);
            } else {
                const std::int64_t wide = std::get<std::int64_t>(value);
                if (!std::in_range<Number>(wide)) refuse(parameter, value, FG_ERR_OUT_OF_RANGE);
                number = static_cast<Number>(wide);
            }
            code = applet().Fg_setParameterWithType(fg(), record.id, &number, 0, tagOf<Number>);
        });
    }
    if (code != FG_OK) refuse(parameter, value, code);
}

Limits Station::limits(const Parameter& parameter) {
    Limits result;
    withNumbers(*parameter.record, [&](const auto& published) {
        using Number = std::decay_t<decltype(published.minimum)>;
        const auto live = [](const Number& place) {
            Number value{};
            __atomic_load(&place, &value, __ATOMIC_RELAXED); // the applet stores it with one store
            return value;
        };
        const Number minimum = live(published.minimum), maximum = live(published.maximum);
        Number increment = live(published.increment);
        if (increment <= 0) increment = 1;
        if (minimum < maximum) {
            result = {inOwnKind(minimum), inOwnKind(maximum), inOwnKind(increment)};
        } else {
            result = {inOwnKind(std::numeric_limits<Number>::lowest()),
                      inOwnKind(std::numeric_limits<Number>::max()), inOwnKind(Number{1})};
        }
    });
    return result;
}

bool Station::isWritable(const Parameter& parameter, bool isAcquiring) {
    const std::uint32_t access = __atomic_load_n(&parameter.record->access, __ATOMIC_RELAXED);
    if ((access & REGISTER_ACCESS_WRITE) == 0) return false;
    return !isAcquiring || (access & REGISTER_ACCESS_WRITE_WHILE_ACQUIRING) != 0;
}

} // namespace producer
