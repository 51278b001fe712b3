#include "station/Injection.h"

#include <utility>

namespace station {

void Injection::writePixel(std::uint64_t pixel) {
    const bool isFirstLine = m_raster.height == 0;
    const std::uint32_t end = isFirstLine ? ImageSize::widest : m_raster.width;
    const bool isFull =
        m_raster.height == ImageSize::highest || m_raster.components.size() / 3 >= ImageSize::mostPixels;
    if (m_x >= end || isFull) return;
    for (int component = 0; component < 3; ++component)
        m_raster.components.push_back(static_cast<std::uint16_t>(pixel >> (16 * component)));
    ++m_x;
}

void Injection::endLine() {
    if (m_x == 0) return;
    if (m_raster.height == 0) m_raster.width = m_x;
    ++m_raster.height;
    m_raster.components.resize(std::size_t{3} * m_raster.width * m_raster.height);
    m_x = 0;
}

std::shared_ptr<const Raster> Injection::endFrame() {
    endLine();
    if (m_raster.height == 0) return nullptr;
    if (std::size_t{m_raster.width} * m_raster.height >
        ImageSize::mostPixels) { // the padding exceeded the limit
        --m_raster.height;
        m_raster.components.resize(std::size_t{3} * m_raster.width * m_raster.height);
    }
    auto image = std::make_shared<Raster>(std::move(m_raster));
    m_raster = {};
    m_raster.point = image->point;
    return image;
}

} // namespace station
