// Shaft encoder: pulses of two inputs, A and B, instead of the one input of the line trigger. Input A is the
// line trigger's own source.

#include "catalogue/live_records.h"
#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"
#include "trigger/trigger_inputs.h"

using namespace catalogue;

void FgLoomWrapperImpl::set_FG_SHAFTENCODERON(std::uint32_t value) {
    requireEntry(enumOnOff, value);
    Replacement stored(m_shaftEncoderOn, value);
    const bool on = value == FG_ON;
    // The design has one mode for both, with 0 for off.
    loomSet_Process0_Trigger_Trigger_EncoderABMode(on ? m_shaftEncoderMode : 0u);
    stored.keep();
    // The line trigger's mode has decided whether the encoder itself can be written.
    const std::uint32_t access =
        on ? publishedAccess(recordAt(indexOf(FG_SHAFTENCODERON))) : std::uint32_t{readOnly};
    for (const std::size_t dependent :
         {indexOf(FG_SHAFTENCODERMODE), indexOf(FG_SHAFTENCODERINSRC), indexOf(FG_SHAFTENCODERLEADING),
          indexOf(FG_SHAFTENCODER_COMPENSATION_ENABLE), indexOf(FG_SHAFTENCODER_COMPENSATION_COUNT)})
        publishAccess(recordAt(dependent), access);
}

void FgLoomWrapperImpl::set_FG_SHAFTENCODERMODE(std::uint32_t value) {
    requireEntry(enumShaftEncoderMode, value);
    Replacement stored(m_shaftEncoderMode, value);
    if (m_shaftEncoderOn != FG_OFF) loomSet_Process0_Trigger_Trigger_EncoderABMode(value);
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_SHAFTENCODERINSRC(std::uint32_t value) {
    requireEntry(enumTriggerInSource, value);
    Replacement stored(m_shaftEncoderInSrc, value);
    loomSet_Process0_Trigger_Trigger_LineTrgInSourceB(std::uint32_t{1});
    loomSet_Process0_Trigger_InputSignal_LineTrgInSourceB_Input_Select(inputIndexOf(value));
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_SHAFTENCODERLEADING(std::uint32_t value) {
    requireEntry(enumShaftEncoderLeading, value);
    storeAndWrite(m_shaftEncoderLeading, value,
                  &FgLoomWrapperImpl::loomSet_Process0_Trigger_Trigger_EncoderABLead);
}

void FgLoomWrapperImpl::set_FG_SHAFTENCODER_COMPENSATION_ENABLE(std::uint32_t value) {
    requireEntry(enumOnOff, value);
    storeAndWrite(m_shaftEncoderCompensationEnable, value,
                  &FgLoomWrapperImpl::loomSet_Process0_Trigger_Trigger_EncoderCompensation);
}

void FgLoomWrapperImpl::set_FG_SHAFTENCODER_COMPENSATION_COUNT(std::uint32_t value) {
    requireRange(value, limitsOf<UInt>(FG_SHAFTENCODER_COMPENSATION_COUNT));
    // The design counts on from here, and a get reads the design: nothing is stored.
    loomSet_Process0_Trigger_Trigger_EncoderCompensationCount(value);
}
