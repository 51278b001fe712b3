// Status of the board and of the camera, as far as it needs more than reading one parameter of the design.

#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"

#include <algorithm>

void FgLoomWrapperImpl::readRuntimeWord(int id, void* word) {
    const int result = getUnwrappedParameterWithType(id, word, 0, FG_PARAM_UINT32);
    if (result != FG_OK) refuse(result);
}

void FgLoomWrapperImpl::readDmaStatus(Destination<std::uint32_t> out) {
    readRuntimeWord(FG_DMASTATUS, out.address());
}

std::uint32_t FgLoomWrapperImpl::readCamStatusExtended() {
    constexpr std::uint32_t pixelClock = 1;
    constexpr std::uint32_t overflowBit = 5;
    constexpr std::uint32_t levelBit = 6; // and the one above: a quarter of the buffer
    // Both read the design's overflow flag, which a read clears: the second may find it cleared.
    const std::uint32_t level = readFillLevel(); // percent
    const std::uint32_t overflow = readOverflow();
    std::uint32_t word = 0;
    readRuntimeWord(FG_CAMSTATUS_EXTENDED, &word);
    if (m_simEnable == FG_CAMERASIMULATOR) word |= pixelClock;
    word = (word & ~(3u << levelBit)) | std::min(level / 25, 3u) << levelBit;
    return (word & ~(1u << overflowBit)) | overflow << overflowBit;
}

void FgLoomWrapperImpl::readAlternativeBoardDetection(Destination<std::uint32_t> out) {
    const auto switchedOff = loomGet_Process0_BoardStatus_AlternativeBoardDetection<std::uint32_t>();
    out.store(switchedOff == 0 ? FG_ON : FG_OFF); // a refused value leaves a 0 there
    if (switchedOff > 1) refuse(FG_ERR_UNRESOLVED);
}
