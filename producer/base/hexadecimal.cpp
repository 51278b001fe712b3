#include "base/hexadecimal.h"

#include <charconv>

namespace producer {

std::string hexadecimal(std::uint64_t number) {
    char digits[16];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, number, 16);
    return {digits, end};
}

std::string wholeBytes(std::uint64_t number) {
    const std::string digits = hexadecimal(number);
    return std::string(digits.size() % 2, '0') + digits;
}

} // namespace producer
