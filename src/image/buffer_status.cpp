// Buffer status. The design clears its overflow flag at each read, so these two and the camera's
// status, which includes them, compete for it.

#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"

#include <algorithm>

std::uint32_t FgLoomWrapperImpl::readOverflow() {
    return loomGet_Process0_OverflowOccurred_Status<std::uint32_t>();
}

std::uint32_t FgLoomWrapperImpl::readFillLevel() {
    if (readOverflow() == 1) return 100;
    std::uint32_t level = loomGet_Process0_Buffer_0_DRAM_DRAM_A_0_FillLevel<std::uint32_t>(); // percent
    level = std::max(level, loomGet_Process0_Buffer_0_DRAM_DRAM_A_1_FillLevel<std::uint32_t>());
    return std::max(level, loomGet_Process0_Buffer_0_DRAM_DRAM_A_2_FillLevel<std::uint32_t>());
}
