#include "appletctl/base/numbers.h"

#include <cmath>

namespace appletctl {

std::string exactText(double number) {
    char text[32];
    const auto [end, error] = std::to_chars(text, text + sizeof text, number);
    return error == std::errc{} ? std::string(text, end) : "?";
}

std::string numberText(double number) {
    constexpr int digits = 12;
    char text[64];
    const auto rounding = std::to_chars(text, text + sizeof text, number, std::chars_format::general, digits);
    const double rounded = floatingNumber({text, rounding.ptr}).value_or(number);
    const double size = std::fabs(rounded);
    const bool isFixed = rounded == 0 || (size >= 1e-9 && size < 1e15);
    if (!std::isfinite(rounded) || !isFixed) return exactText(rounded);
    const auto fixed = std::to_chars(text, text + sizeof text, rounded, std::chars_format::fixed);
    return {text, fixed.ptr};
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

} // namespace appletctl
