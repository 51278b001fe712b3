/** The curve of a lookup table, from the processing parameters. */
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
 * Results above 1 are clamped to the largest value, but a result beyond 32 bits becomes 0, even if inverted.
 * A gamma of 0 or below is not rejected.
 */
void computeLutTable(std::span<std::uint32_t> table, unsigned inBits, unsigned outBits,
                     const LutFormula& formula);

#endif
