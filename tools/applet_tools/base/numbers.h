/** Parses and formats numbers for users. */
#ifndef APPLET_TOOLS_BASE_NUMBERS_H
#define APPLET_TOOLS_BASE_NUMBERS_H

#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

namespace applet_tools {

/** A number for display: 12 significant digits, so that 3999.9999999999995 is 4000; without an exponent
 *  from 1e-9 to 1e15. */
std::string numberText(double number);
template <typename Integer> std::string numberText(Integer number) { return std::to_string(number); }

/** The nearest number that numberText shows exactly and that is not above, or not below, this one. */
double roundedDown(double number);
double roundedUp(double number);

/** The shortest form of a number that reads back exactly, for input to a command or a program. */
std::string exactText(double number);
template <typename Integer> std::string exactText(Integer number) { return std::to_string(number); }

/** "0x1f". */
std::string hexText(std::uint64_t number);

/** Parses the whole text as an integer, decimal or 0x..., with or without sign. */
template <typename Integer> std::optional<Integer> wholeNumber(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        base = 16;
        text.remove_prefix(2);
    }
    std::uint64_t magnitude = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude, base);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    using Limits = std::numeric_limits<Integer>;
    if (!negative || magnitude == 0) {
        if (magnitude > static_cast<std::uint64_t>(Limits::max())) return std::nullopt;
        return static_cast<Integer>(magnitude);
    }
    if (std::is_unsigned_v<Integer> || magnitude > static_cast<std::uint64_t>(Limits::max()) + 1)
        return std::nullopt;
    return static_cast<Integer>(-static_cast<std::int64_t>(magnitude - 1) - 1);
}

/** Parses the whole text as a finite number such as 19.5 or 1e-3. */
std::optional<double> floatingNumber(std::string_view text);

} // namespace applet_tools

#endif
