// Pixel format of the camera: the width of the colour components and their order on the link.

#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"

#include <algorithm>

using namespace catalogue;

namespace {

/** Bits of a component by the depth code, the low four bits of a pixel format. */
constexpr std::uint32_t componentBits[] = {64, 8, 10, 12, 14, 16};

constexpr std::uint32_t colorFormatGroup = 4;

std::uint32_t decoded(std::uint32_t format) {
    const std::uint32_t depthCode = format & 0xf;
    const std::uint32_t group = format >> 8 & 0xff;
    if (group != colorFormatGroup || depthCode >= std::size(componentBits)) refuse(FG_ERR_NO_TRANSLATION);
    return componentBits[depthCode];
}

struct LineOrder {
    std::uint32_t value;
    std::uint32_t red, green, blue; // component numbers
};

// The numbers are the design's own, not the positions of the letters in the name.
constexpr LineOrder lineOrders[] = {
    {FG_LINEORDER_RGB, 0, 1, 2}, {FG_LINEORDER_BGR, 2, 1, 0}, {FG_LINEORDER_RBG, 0, 2, 1},
    {FG_LINEORDER_BRG, 2, 0, 1}, {FG_LINEORDER_GBR, 1, 2, 0}, {FG_LINEORDER_GRB, 1, 0, 2},
};

} // namespace

void FgLoomWrapperImpl::set_FG_PIXELFORMAT(std::uint32_t value) {
    requireEntry(enumPixelFormat, value);
    Replacement stored(m_pixelFormat, value);
    // Written again with the buffer's geometry: the sequence of writes is fixed.
    loomSet_Process0_Buffer_0_PixelFormat(decoded(value));
    // No limit of the region is tested here, so it may exceed what the DRAM can hold of this format.
    writeBufferGeometry(orderAfter(stored.old()));
    stored.keep();
    updateGeometryRanges();
}

void FgLoomWrapperImpl::set_FG_LINEORDER(std::uint32_t value) {
    requireEntry(enumLineOrder, value);
    Replacement stored(m_lineOrder, value);
    const LineOrder& order = *std::ranges::find(lineOrders, value, &LineOrder::value);
    loomSet_Process0_Camera_SortImage_ColorInterpret_SelectComponents_RedComponent(order.red);
    loomSet_Process0_Camera_SortImage_ColorInterpret_SelectComponentsHeader_RedComponent(order.red);
    loomSet_Process0_Camera_SortImage_ColorInterpret_SelectComponents_GreenComponent(order.green);
    loomSet_Process0_Camera_SortImage_ColorInterpret_SelectComponentsHeader_GreenComponent(order.green);
    loomSet_Process0_Camera_SortImage_ColorInterpret_SelectComponents_BlueComponent(order.blue);
    loomSet_Process0_Camera_SortImage_ColorInterpret_SelectComponentsHeader_BlueComponent(order.blue);
    stored.keep();
}
