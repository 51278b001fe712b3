/** The lookup tables, and the parameters of the formula that computes them. */
#ifndef IMAGE_LOOKUP_TABLE_H
#define IMAGE_LOOKUP_TABLE_H

#include "catalogue/lut_size.h"
#include "vexo/fg_parameters.h"

#include <array>
#include <cstdint>
#include <string>

struct LookupTables {
    using LutTable = std::array<std::uint32_t, lutEntries>;

    std::uint32_t m_lutEnable;
    std::uint32_t m_lutType;
    LutTable m_lutRed{};
    LutTable m_lutGreen{};
    LutTable m_lutBlue{};
    std::string m_lutCustomFile;
    std::string m_lutSaveFile;
    double m_processingOffset = 0.0;
    double m_processingGain = 1.0;
    double m_processingGamma = 1.0;
    std::uint32_t m_processingInvert = FG_OFF;

    std::uint32_t lutImplementationType() const { return LUT_IMPLEMENTATION_FULL_LUT; }
    std::uint32_t lutInBits() const { return lutInputBits; }
    std::uint32_t lutOutBits() const { return lutOutputBits; }
};

#endif
