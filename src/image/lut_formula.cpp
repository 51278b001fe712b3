#include "image/lut_formula.h"

#include "support/conversions.h"

#include <algorithm>
#include <cmath>

namespace {

/** The table for one way to raise a value to the power of 1 / gamma. */
template <typename Power>
void fill(std::span<std::uint32_t> table, std::uint32_t entries, std::uint32_t largest,
          const LutFormula& formula, Power power) {
    for (std::uint32_t i = 0; i < entries; ++i) {
        const double x = static_cast<double>(i) / (entries - 1) + formula.offset;
        const double y = x * formula.gain;
        std::uint32_t entry = 0;
        if (!(y < 0)) entry = static_cast<std::uint32_t>(truncated<std::int32_t>(0.5 + power(y) * largest));
        if (formula.invert) entry = largest - entry;
        // Read with a sign: what overflowed is negative.
        table[i] = static_cast<std::uint32_t>(
            std::clamp(static_cast<std::int32_t>(entry), 0, static_cast<std::int32_t>(largest)));
    }
}

} // namespace

void computeLutTable(std::span<std::uint32_t> table, unsigned inBits, unsigned outBits,
                     const LutFormula& formula) {
    const std::uint32_t entries = std::uint32_t{1} << inBits;
    const std::uint32_t largest = (std::uint32_t{1} << outBits) - 1;
    const double exponent = quotient(1.0, formula.gamma);
    if (exponent == 1.0) // what every bring-up computes; pow(y, 1) is y to the bit
        fill(table, entries, largest, formula, [](double y) { return y; });
    else
        fill(table, entries, largest, formula, [exponent](double y) { return std::pow(y, exponent); });
}
