/** Size of the lookup tables. */
#ifndef CATALOGUE_LUT_SIZE_H
#define CATALOGUE_LUT_SIZE_H

#include <cstdint>

inline constexpr std::uint32_t lutInputBits = 14;
inline constexpr std::uint32_t lutOutputBits = 16;
inline constexpr std::uint32_t lutEntries = 1u << lutInputBits;
inline constexpr std::uint32_t lutLargest = (1u << lutOutputBits) - 1;

#endif
