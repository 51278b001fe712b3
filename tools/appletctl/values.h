/** Values of parameters in their native width: reading, writing, texts. */
#ifndef APPLETCTL_VALUES_H
#define APPLETCTL_VALUES_H

#include "appletctl/Instance.h"
#include "appletctl/ParameterList.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace appletctl {

/** The elements of an array parameter, which are counted and not read. */
struct Elements {
    std::int32_t count;
};

using Value =
    std::variant<std::uint32_t, std::int32_t, std::uint64_t, std::int64_t, double, std::string, Elements>;

struct Reading {
    int error = 0;
    Value value;
};

/** True for the array kinds of RegisterInfo. */
bool isArray(const Parameter& parameter);

Reading readValue(Instance& instance, const Parameter& parameter);

/** Returns the applet's code. */
int writeValue(Instance& instance, const Parameter& parameter, const Value& value);

/** Reads a value that a user typed: numbers decimal or 0x..., for enumerations also the symbolic name or the
 *  label. Throws UsageError for what the parameter's kind cannot hold; its limits are the applet's matter. */
Value parseValue(const Parameter& parameter, const std::string& text);

/** Enumerations by symbolic name, texts in double quotes, floating point by the shortest form that reads back
 *  the same. */
std::string valueText(const Parameter& parameter, const Value& value);

/** As valueText, an enumeration with its number: "RGB8 (1025)", then the unit. */
std::string valueWithUnit(const Parameter& parameter, const Value& value);

/** Adds "value" and, for enumerations, "symbol" and "label"; for arrays "elements". */
void addValue(nlohmann::ordered_json& object, const Parameter& parameter, const Value& value);

/** A number in its shortest form that reads back the same. */
std::string numberText(double number);
template <typename Integer> std::string numberText(Integer number) { return std::to_string(number); }

} // namespace appletctl

#endif
