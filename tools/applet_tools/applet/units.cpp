#include "applet_tools/applet/units.h"

#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace applet_tools {
namespace {

enum class Quantity {
    time,
    frequency,
    voltage,
    temperature,
    share,
    pixels,
    lines,
    pulses,
    images,
    bits,
    bytes
};

struct UnitRow {
    std::string_view name; // in lower case
    Quantity quantity;
    int exponent; // power of ten relative to the quantity's base unit
};

constexpr UnitRow unitRows[] = {
    {"s", Quantity::time, 0},
    {"sec", Quantity::time, 0},
    {"second", Quantity::time, 0},
    {"seconds", Quantity::time, 0},
    {"ms", Quantity::time, -3},
    {"us", Quantity::time, -6},
    {"\u00B5s", Quantity::time, -6},
    {"\u03BCs", Quantity::time, -6}, // the micro sign and the Greek letter
    {"ns", Quantity::time, -9},
    {"hz", Quantity::frequency, 0},
    {"khz", Quantity::frequency, 3},
    {"mhz", Quantity::frequency, 6},
    {"ghz", Quantity::frequency, 9},
    {"v", Quantity::voltage, 0},
    {"mv", Quantity::voltage, -3},
    {"celsius", Quantity::temperature, 0},
    {"\u00B0c", Quantity::temperature, 0},
    {"%", Quantity::share, 0},
    {"percent", Quantity::share, 0},
    {"px", Quantity::pixels, 0},
    {"pixel", Quantity::pixels, 0},
    {"pixels", Quantity::pixels, 0},
    {"line", Quantity::lines, 0},
    {"lines", Quantity::lines, 0},
    {"pulse", Quantity::pulses, 0},
    {"pulses", Quantity::pulses, 0},
    {"image", Quantity::images, 0},
    {"images", Quantity::images, 0},
    {"bit", Quantity::bits, 0},
    {"bits", Quantity::bits, 0},
    {"byte", Quantity::bytes, 0},
    {"bytes", Quantity::bytes, 0},
};

const UnitRow* unitNamed(const std::string& name) {
    const auto found = std::ranges::find(unitRows, lowerCase(name), &UnitRow::name);
    return found != std::end(unitRows) ? &*found : nullptr;
}

/** End of the number at the beginning of the text; a letter e counts only if digits follow it. */
std::size_t endOfNumber(const std::string& text) {
    const auto skip = [&](std::size_t position, const char* characters) {
        return std::min(text.find_first_not_of(characters, position), text.size());
    };
    constexpr const char* digits = "0123456789";
    const std::size_t start = skip(0, "+-");
    const std::size_t mantissa = skip(start, "0123456789.");
    if (mantissa == start || mantissa == text.size() || lowerCase(text.substr(mantissa, 1)) != "e")
        return mantissa == start ? 0 : mantissa;
    const std::size_t exponent = skip(mantissa + 1, "+-");
    const std::size_t end = skip(exponent, digits);
    return end > exponent ? end : mantissa;
}

/** The number times a power of ten, as text, so that it is not rounded. */
std::string shifted(const std::string& number, int exponent) {
    if (exponent == 0) return number;
    const std::size_t mark = number.find_first_of("eE");
    const auto own = mark != std::string::npos ? wholeNumber<int>(number.substr(mark + 1)) : 0;
    constexpr int farthest = 1000; // no double is larger or smaller
    if (!own || std::abs(*own) > farthest) return number;
    return number.substr(0, mark) + "e" + numberText(*own + exponent);
}

/** Converts between a period and its frequency: "10 kHz is a period of 100 µs". */
std::string reciprocal(const std::string& typed, double inBaseUnit, const UnitRow& from,
                       const std::string& unit, const UnitRow& to) {
    const bool isPair = (from.quantity == Quantity::time && to.quantity == Quantity::frequency) ||
                        (from.quantity == Quantity::frequency && to.quantity == Quantity::time);
    if (!isPair || inBaseUnit <= 0) return "";
    const auto other = floatingNumber(shifted(numberText(1 / inBaseUnit), -to.exponent));
    if (!other) return "";
    return "; " + typed + (to.quantity == Quantity::time ? " is a period of " : " is a frequency of ") +
           numberText(*other) + " " + unit;
}

} // namespace

std::optional<NumberWithUnit> convertUnit(const std::string& text, const std::string& unit) {
    const std::size_t end = endOfNumber(text);
    const std::size_t unitBegin = text.find_first_not_of(' ', end);
    if (end == 0 || unitBegin == std::string::npos) return std::nullopt;
    const std::string number = text.substr(0, end), typed = text.substr(unitBegin);
    if (lowerCase(typed) == lowerCase(unit)) return NumberWithUnit{number, ""};
    const UnitRow* from = unitNamed(typed);
    if (from == nullptr) return std::nullopt;
    if (unit.empty())
        return NumberWithUnit{"", "the parameter has no unit: give the number alone, as " + number};
    const UnitRow* to = unitNamed(unit);
    if (to != nullptr && to->quantity == from->quantity)
        return NumberWithUnit{shifted(number, from->exponent - to->exponent), ""};
    std::string reason =
        "the unit of the parameter is " + unit + ", and '" + typed + "' does not convert to it";
    const auto inBaseUnit = floatingNumber(shifted(number, from->exponent));
    if (to != nullptr && inBaseUnit)
        reason += reciprocal(number + " " + typed, *inBaseUnit, *from, unit, *to);
    return NumberWithUnit{"", reason};
}

} // namespace applet_tools
