/** Gain, lookup table and shift of a colour as one table over the values of the link. */
#ifndef STATION_PICTURE_COMPONENTS_H
#define STATION_PICTURE_COMPONENTS_H

#include "station/picture/PictureSettings.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace station {

/** The result for a component of 16 bits inside the design, before the shift. */
std::uint16_t balanced(std::uint32_t inside, std::uint32_t gain, bool isTableEnabled,
                       std::span<const std::uint16_t> table);

class Components {
public:
    /** Null tables are all 0. */
    Components(const ColourSettings& settings, const Tables* tables);

    /** The output for each value of a component in the given colour: 0 red, 1 green, 2 blue. */
    const std::uint16_t* tableOf(std::size_t colour) const { return m_tables[colour].data(); }
    /** Largest value of the link. */
    std::uint32_t mask() const { return m_mask; }

private:
    std::array<std::vector<std::uint16_t>, 3> m_tables;
    std::uint32_t m_mask;
};

/** The low bits of a value that is shifted to the right. */
constexpr std::uint16_t shifted(std::uint32_t value, std::uint32_t shift, std::uint32_t bits) {
    const std::uint32_t moved = shift < 32 ? value >> shift : 0;
    return static_cast<std::uint16_t>(moved & ((1U << bits) - 1));
}

} // namespace station

#endif
