#include "appletctl/numbers.h"

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

} // namespace appletctl
