/** Values of parameters in their native width: reading, writing, texts. */
#ifndef APPLET_TOOLS_APPLET_VALUES_H
#define APPLET_TOOLS_APPLET_VALUES_H

#include "applet_tools/applet/Instance.h"
#include "applet_tools/applet/Target.h"
#include "applet_tools/base/numbers.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace applet_tools {

/** An array parameter as a whole: only its size is read. */
struct WholeArray {
    std::uint32_t count;

    bool operator==(const WholeArray&) const = default;
};

/** Elements of an array parameter. */
using Elements = std::vector<std::uint32_t>;

using NativeValue = std::variant<std::uint32_t, std::int32_t, std::uint64_t, std::int64_t, double,
                                 std::string, WholeArray, Elements>;

/** Texts hold the bytes of the applet or of the command line, which may be ISO 8859-1. */
struct Value : NativeValue {
    using NativeValue::NativeValue;

    /** Two of them that are not a number (NaN), which a load may store, are equal: nothing has changed. */
    friend bool operator==(const Value& a, const Value& b);
};

/** True for NaN. */
bool isUndefined(const Value& value);

struct ReadResult {
    int error = 0;
    Value value{};
    /** False for a measured value of an instance without a board: it means nothing. */
    bool isMeasured = true;
};

/** Shown instead of such a value. */
inline constexpr const char* notMeasuredText = "- (not measured: offline there is no board)";

/** A value of the target's native type: zero, with as many elements as the target has. */
Value emptyValue(const Target& target);

ReadResult readValue(Instance& instance, const Target& target);

/** The value. Throws Failure if the read fails. */
Value valueOf(Instance& instance, const Target& target);

/** The applet's description of a parameter; empty if it has none. */
std::string explanationOf(Instance& instance, const Parameter& parameter);

/** Returns the applet's code. */
int writeValue(Instance& instance, const Target& target, const Value& value);

/** Reads a value that a user typed: numbers decimal or 0x..., for enumerations also the symbolic name or the
 *  label, for elements the number that all of them get. Throws UsageError if the parameter's kind cannot
 *  hold it; limits are left to the applet. `relation` is what stands between the two, for the message. */
Value parseValue(const Target& target, const std::string& text, std::string_view relation = "=");

/** Enumerations as symbolic names, texts in double quotes, numbers as numberText, elements as one number if all
 *  are equal. */
std::string valueText(const Parameter& parameter, const Value& value);

/** The same as a word for `set`: floating-point numbers exactly. */
std::string exactValueText(const Parameter& parameter, const Value& value);

std::string exactValueWithUnit(const Parameter& parameter, const Value& value);

/** Like valueText, with the number of an enumeration, "RGB8 (1025)", and the unit. */
std::string valueWithUnit(const Parameter& parameter, const Value& value);

/** "1024 pixel"; "-" and the reason if there is no value. */
std::string shownReading(const Parameter& parameter, const ReadResult& reading);

/** Adds "value" and, for enumerations, "symbol" and "label"; for a whole array "elements", their number; for
 *  one element "index" and "value", for several "first" and "values". */
void addValue(nlohmann::ordered_json& object, const Target& target, const Value& value);

/** The members of addValue as an object. */
nlohmann::ordered_json valueAsJson(const Target& target, const Value& value);

/** True for numbers and entries. */
bool isNumber(const Value& value);

/** A number as a double; 0 for texts and arrays. */
double asDouble(const Value& number);

/** A number; null for texts and arrays. */
nlohmann::ordered_json numberAsJson(const Value& number);

/** Adds the members of addValue, or "error" if the read failed; "value": null and "measured": false if there
 *  was no measurement. */
void addReading(nlohmann::ordered_json& object, const Target& target, const ReadResult& reading);

/** Name, id, unit and the members of addReading. */
nlohmann::ordered_json readingAsJson(const Target& target, const ReadResult& reading);

} // namespace applet_tools

#endif
