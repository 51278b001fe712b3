#include "station/picture/Components.h"

#include <algorithm>

namespace station {

std::uint16_t balanced(std::uint32_t inside, std::uint32_t gain, bool isTableEnabled,
                       std::span<const std::uint16_t> table) {
    const std::uint32_t value = std::min(inside * gain >> 10, 65535U);
    if (!isTableEnabled) return static_cast<std::uint16_t>(value);
    return value >> 2 < table.size() ? table[value >> 2] : std::uint16_t{0};
}

Components::Components(const ColourSettings& settings, const Tables* tables)
    : m_mask((1U << settings.linkBits) - 1) {
    for (std::size_t colour = 0; colour < 3; ++colour) {
        std::span<const std::uint16_t> table;
        if (tables != nullptr) table = tables->entries[colour];
        m_tables[colour].resize(std::size_t{m_mask} + 1);
        for (std::uint32_t value = 0; value <= m_mask; ++value) {
            const std::uint32_t inside = value << (16 - settings.linkBits);
            const auto full = balanced(inside, settings.gain[colour], settings.isTableEnabled, table);
            m_tables[colour][value] = shifted(full, settings.shift, settings.outBits);
        }
    }
}

} // namespace station
