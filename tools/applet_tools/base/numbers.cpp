#include "applet_tools/base/numbers.h"

#include <cmath>

namespace applet_tools {

std::string exactText(double number) {
    char text[32];
    const auto [end, error] = std::to_chars(text, text + sizeof text, number);
    return error == std::errc{} ? std::string(text, end) : "?";
}

namespace {

constexpr int shownDigits = 12;

double rounded(double number) {
    char text[64];
    const auto end =
        std::to_chars(text, text + sizeof text, number, std::chars_format::general, shownDigits).ptr;
    return floatingNumber({text, end}).value_or(number);
}

/** One unit in the last displayed digit. */
double lastDigit(double number) {
    return std::pow(10, std::floor(std::log10(std::fabs(number))) - (shownDigits - 1));
}

} // namespace

double roundedDown(double number) {
    const double shown = rounded(number);
    return shown > number ? rounded(shown - lastDigit(number)) : shown;
}

double roundedUp(double number) { return -roundedDown(-number); }

std::string numberText(double number) {
    const double shown = rounded(number), size = std::fabs(shown);
    const bool isFixed = shown == 0 || (size >= 1e-9 && size < 1e15);
    if (!isFixed) return exactText(shown);
    char text[64];
    return {text, std::to_chars(text, text + sizeof text, shown, std::chars_format::fixed).ptr};
}

std::string hexText(std::uint64_t number) {
    char digits[16];
    const auto result = std::to_chars(digits, digits + sizeof digits, number, 16);
    return "0x" + std::string(digits, result.ptr);
}

std::optional<double> floatingNumber(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc{} && end == text.data() + text.size() && std::isfinite(number)) return number;
    return std::nullopt;
}

} // namespace applet_tools
