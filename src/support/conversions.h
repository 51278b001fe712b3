/** Conversions of floating point numbers that are defined for every input. */
#ifndef SUPPORT_CONVERSIONS_H
#define SUPPORT_CONVERSIONS_H

#include <cmath>
#include <concepts>
#include <limits>

/** `number` without its fraction; the lowest value of the type for NaN and for values out of its range. */
template <std::integral Integer> constexpr Integer truncated(double number) {
    // Both bounds are powers of two or zero, so they are exact.
    constexpr double lowest = static_cast<double>(std::numeric_limits<Integer>::lowest());
    constexpr Integer half = std::numeric_limits<Integer>::max() / 2 + 1;
    constexpr double beyond = 2.0 * static_cast<double>(half);
    if (!(number > lowest - 1.0 && number < beyond)) return std::numeric_limits<Integer>::lowest();
    return static_cast<Integer>(number);
}

/** `dividend / divisor` as in IEEE 754, also for a divisor of 0: infinite, or NaN for 0 / 0. */
inline double quotient(double dividend, double divisor) {
    if (divisor != 0) return dividend / divisor;
    if (dividend == 0 || dividend != dividend) return std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    return std::signbit(dividend) == std::signbit(divisor) ? infinity : -infinity;
}

#endif
