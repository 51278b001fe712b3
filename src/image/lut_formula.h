/** The curve that the processing parameters make of a lookup table. */
#ifndef IMAGE_LUT_FORMULA_H
#define IMAGE_LUT_FORMULA_H

#include <cstdint>
#include <span>

struct LutFormula {
    double gain;
    double gamma;
    double offset;
    bool invert;
};

/**
 * Fills the first 2^inBits entries (256 or more) of a table with values of outBits bits: offset, gain, gamma,
 * rounding, invert, clamp.
 *
 * What overshoots 1 ends as the largest value, but what leaves the range of 32 bits ends as 0, also inverted.
 * A gamma of 0 or below is not rejected.
 */
void computeLutTable(std::span<std::uint32_t> table, unsigned inBits, unsigned outBits,
                     const LutFormula& formula);

#endif
