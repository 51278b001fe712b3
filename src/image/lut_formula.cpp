#include "image/lut_formula.h"

#include "support/conversions.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// One step at a time over a block of entries, so that the compiler can vectorize it.
constexpr int blockSize = 256;

/** The table for one way to raise a value to the power of 1 / gamma. Whole blocks only. */
template <typename Power>
void fill(std::span<std::uint32_t> table, std::uint32_t largest, const LutFormula& formula, Power power) {
    const double last = static_cast<double>(table.size() - 1);
    const double top = largest;
    const auto [gain, gamma, offset, invert] = formula;
    std::array<double, blockSize> values;
    for (int first = 0; first < static_cast<int>(table.size()); first += blockSize) {
        for (int i = 0; i < blockSize; ++i)
            values[static_cast<std::size_t>(i)] = ((first + i) / last + offset) * gain;
        for (double& value : values)
            value = value < 0 ? 0.0 : power(value);
        std::uint32_t* entries = &table[static_cast<std::size_t>(first)];
        for (int i = 0; i < blockSize; ++i)
            entries[i] = static_cast<std::uint32_t>(
                truncated<std::int32_t>(0.5 + values[static_cast<std::size_t>(i)] * top));
        if (invert)
            for (int i = 0; i < blockSize; ++i)
                entries[i] = largest - entries[i];
        // Read as signed: an overflowed value is negative.
        for (int i = 0; i < blockSize; ++i)
            entries[i] = static_cast<std::uint32_t>(
                std::clamp(static_cast<std::int32_t>(entries[i]), 0, static_cast<std::int32_t>(largest)));
    }
}

} // namespace

void computeLutTable(std::span<std::uint32_t> table, unsigned inBits, unsigned outBits,
                     const LutFormula& formula) {
    const std::span entries = table.first(std::size_t{1} << inBits);
    const std::uint32_t largest = (std::uint32_t{1} << outBits) - 1;
    const double exponent = quotient(1.0, formula.gamma);
    if (exponent == 1.0) // the case at every bring-up; pow(y, 1) is exactly y
        fill(entries, largest, formula, [](double y) { return y; });
    else
        fill(entries, largest, formula, [exponent](double y) { return std::pow(y, exponent); });
}
