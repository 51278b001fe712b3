// Image trigger and flash: start and length of a frame, the software trigger, the flash output.

#include "catalogue/live_records.h"
#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"
#include "trigger/trigger_inputs.h"

#include <algorithm>

using namespace catalogue;

namespace {

struct ImageTriggerMode {
    std::uint32_t mode;
    std::uint32_t designValue;
    std::uint32_t gateSpansBuffers; // the gate, not the height of the region, ends a frame
};

constexpr ImageTriggerMode imageTriggerModes[] = {
    {FREE_RUN, 0, 0},    {ASYNC_TRIGGER, 1, 0},          {ASYNC_TRIGGER_MULTIFRAME, 1, 0},
    {ASYNC_GATED, 2, 0}, {ASYNC_GATED_MULTIFRAME, 2, 1},
};

const ImageTriggerMode& imageTriggerMode(std::uint32_t mode) {
    const auto* row = std::ranges::find(imageTriggerModes, mode, &ImageTriggerMode::mode);
    if (row == std::end(imageTriggerModes)) refuse(FG_ERR_NO_TRANSLATION);
    return *row;
}

// The design's number of a trigger source; 0 and 1 are the line trigger's sources A and B.
constexpr std::uint32_t fromInput = 2;
constexpr std::uint32_t fromSoftware = 4;

} // namespace

void FgLoomWrapperImpl::set_FG_IMGTRIGGERMODE(std::uint32_t value) {
    requireEntry(enumImageTriggerMode, value);
    Replacement stored(m_imgTriggerMode, value);
    for (const std::size_t input : {indexOf(FG_IMGTRIGGERINSRC), indexOf(FG_IMGTRIGGERINPOLARITY),
                                    indexOf(FG_IMGTRIGGERGATEDELAY), indexOf(FG_IMGTRIGGERDEBOUNCING)})
        publishAccess(recordAt(input), value == FREE_RUN ? readOnly : anyTime);
    // Not in the gated mode for several buffers: there the gate ends a frame.
    publishAccess(recordAt(indexOf(FG_IMGTRIGGER_ASYNC_HEIGHT)),
                  value == ASYNC_TRIGGER_MULTIFRAME ? anyTime : readOnly);
    const ImageTriggerMode& mode = imageTriggerMode(value);
    loomSet_Process0_Trigger_Trigger_ImgTriggerMode(mode.designValue);
    loomSet_Process0_Trigger_Trigger_MaxGatedHeight(mode.gateSpansBuffers);
    writeTriggerGeometry(m_yOffset, m_height, value);
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_IMGTRIGGERON(std::uint32_t value) {
    requireEntry(enumOnOff, value);
    storeAndWrite(m_imgTriggerOn, value,
                  &FgLoomWrapperImpl::loomSet_Process0_Trigger_Trigger_ImgTriggerEnable);
}

void FgLoomWrapperImpl::set_FG_FLASHON(std::uint32_t value) {
    requireEntry(enumOnOff, value);
    storeAndWrite(m_flashOn, value, &FgLoomWrapperImpl::loomSet_Process0_Trigger_Trigger_FlashEnable);
}

void FgLoomWrapperImpl::set_FG_IMGTRIGGER_ASYNC_HEIGHT(std::uint32_t value) {
    // Never compared with the region's height.
    requireRange(value, limitsOf<UInt>(FG_IMGTRIGGER_ASYNC_HEIGHT));
    Replacement stored(m_imgTriggerAsyncHeight, value);
    if (m_imgTriggerMode == ASYNC_TRIGGER_MULTIFRAME) writeTriggerRange(m_yOffset, value);
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_IMGTRIGGERINSRC(std::uint32_t value) {
    requireEntry(enumImageTriggerInSource, value);
    Replacement stored(m_imgTriggerInSrc, value);
    const bool bySoftware = value == static_cast<std::uint32_t>(TRGINSOFTWARE);
    const std::uint32_t input = bySoftware ? 0 : inputIndexOf(value);
    loomSet_Process0_Trigger_Trigger_ImgTrgInSource(bySoftware ? fromSoftware : fromInput);
    loomSet_Process0_Trigger_InputSignal_ImgTrgInSource_Input_Select(input);
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_IMGTRIGGERINPOLARITY(std::uint32_t value) {
    requireEntry(enumTriggerInPolarity, value);
    storeAndWrite(m_imgTriggerInPolarity, value,
                  &FgLoomWrapperImpl::loomSet_Process0_Trigger_Trigger_ImgTrgInPolarity);
}

void FgLoomWrapperImpl::set_FG_IMGTRIGGERGATEDELAY(std::uint32_t value) {
    requireRange(value, limitsOf<UInt>(FG_IMGTRIGGERGATEDELAY));
    storeAndWrite(m_imgTriggerGateDelay, value,
                  &FgLoomWrapperImpl::loomSet_Process0_Trigger_Trigger_ImgTrgDelay);
}

void FgLoomWrapperImpl::set_FG_IMGTRIGGERDEBOUNCING(double value) {
    requireRange(value, limitsOf<Double>(FG_IMGTRIGGERDEBOUNCING));
    // The line trigger writes the prescaler of the inputs.
    storeAndWrite(m_imgTriggerDebouncing, value,
                  &FgLoomWrapperImpl::loomSet_Process0_Trigger_Trigger_ImgTrgDebouncingTime);
}

void FgLoomWrapperImpl::set_FG_FLASH_POLARITY(std::uint32_t value) {
    requireEntry(enumPolarity, value);
    Replacement stored(m_flashPolarity, value);
    loomSet_Process0_Trigger_Trigger_FlashPolarity(value == FG_LOW ? 1u : 0u); // inverted in the design
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_STROBEPULSEDELAY(std::uint32_t value) {
    requireRange(value, limitsOf<UInt>(FG_STROBEPULSEDELAY));
    storeAndWrite(m_strobePulseDelay, value, &FgLoomWrapperImpl::loomSet_Process0_Trigger_Trigger_FlashDelay);
}

void FgLoomWrapperImpl::set_FG_SENDSOFTWARETRIGGER(std::uint32_t value) {
    requireEntry(enumApply, value);
    // One pulse for each write; it cannot be undone.
    storeAndWrite(m_sendSoftwareTrigger, value,
                  &FgLoomWrapperImpl::loomSet_Process0_Trigger_Trigger_SoftwareTrgPulse);
}

void FgLoomWrapperImpl::set_FG_SETSOFTWARETRIGGER(std::uint32_t value) {
    requireEntry(enumPolarity, value);
    storeAndWrite(m_setSoftwareTrigger, value,
                  &FgLoomWrapperImpl::loomSet_Process0_Trigger_Trigger_SoftwareTrgInput);
}
