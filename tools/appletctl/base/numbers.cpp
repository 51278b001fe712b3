#include "appletctl/base/numbers.h"

#include <cmath>

namespace appletctl {

std::string numberText(double number) {
    char text[32];
    const auto [end, error] = std::to_chars(text, text + sizeof text, number);
    return error == std::errc{} ? std::string(text, end) : "?";
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
