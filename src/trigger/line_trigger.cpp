// Line trigger and ExSync: source and timing of the pulse to the camera.
//
// Times are microseconds, passed to the design unrounded; the design converts them to ticks of 8 ns.

#include "catalogue/live_records.h"
#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"
#include "support/conversions.h"
#include "trigger/trigger_inputs.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace catalogue;

namespace {

// In ticks of the design's counters: at least 64, at most 18 bits for the period and 17 for a pulse.
constexpr Double periodLimits = limitsOf<Double>(FG_LINEPERIODE);
constexpr Double pulseLimits = limitsOf<Double>(FG_LINEEXPOSURE);

struct LineTriggerMode {
    std::uint32_t mode;
    std::uint32_t designValue;
    std::uint32_t inputAccess; // of the parameters of the input, which only an external trigger needs
};

constexpr LineTriggerMode lineTriggerModes[] = {
    {GRABBER_CONTROLLED, 0, readOnly},
    {ASYNC_TRIGGER, 1, anyTime},
    {GRABBER_CONTROLLED_GATED, 2, readOnly},
    {ASYNC_GATED, 3, anyTime},
};

const LineTriggerMode& lineTriggerMode(std::uint32_t mode) {
    const auto* row = std::ranges::find(lineTriggerModes, mode, &LineTriggerMode::mode);
    if (row == std::end(lineTriggerModes)) refuse(FG_ERR_NO_TRANSLATION);
    return *row;
}

/** Prescaler period of the inputs' debouncing, 3 ticks each. Adds a half, then rounds up: never too short. */
std::uint32_t debouncePrescaler(double microseconds) {
    return truncated<std::uint32_t>(std::ceil(0.5 + (125.0 * microseconds) / 3.0));
}

} // namespace

double LineTrigger::exposureLimit() const {
    const bool periodic =
        m_lineTriggerMode == GRABBER_CONTROLLED || m_lineTriggerMode == GRABBER_CONTROLLED_GATED;
    return periodic && m_linePeriode < pulseLimits.maximum ? m_linePeriode : pulseLimits.maximum;
}

void FgLoomWrapperImpl::updateExposureRange() {
    publishMaximum(recordAt(indexOf(FG_LINEEXPOSURE)), aboveZero(exposureLimit()));
}

void FgLoomWrapperImpl::updateTriggerDelayRange() {
    publishMaximum(recordAt(indexOf(FG_LINETRIGGERDELAY)), aboveZero(m_linePeriode));
}

void FgLoomWrapperImpl::set_FG_LINETRIGGERMODE(std::uint32_t value) {
    requireEntry(enumLineTriggerMode, value);
    Replacement stored(m_lineTriggerMode, value);
    const LineTriggerMode& mode = lineTriggerMode(value);
    for (const std::size_t input :
         {indexOf(FG_LINETRIGGERINSRC), indexOf(FG_LINETRIGGERINPOLARITY), indexOf(FG_LINE_DOWNSCALE),
          indexOf(FG_LINE_DOWNSCALEINIT), indexOf(FG_SHAFTENCODERON)})
        publishAccess(recordAt(input), mode.inputAccess);
    // The compensation count stays as it is here; only switching the encoder itself reaches it.
    if (m_shaftEncoderOn == FG_ON)
        for (const std::size_t input :
             {indexOf(FG_SHAFTENCODERMODE), indexOf(FG_SHAFTENCODERINSRC), indexOf(FG_SHAFTENCODERLEADING),
              indexOf(FG_SHAFTENCODER_COMPENSATION_ENABLE)})
            publishAccess(recordAt(input), mode.inputAccess);
    loomSet_Process0_Trigger_Trigger_LineTriggerMode(mode.designValue);
    stored.keep();
    updateExposureRange();
}

void FgLoomWrapperImpl::set_FG_EXSYNCON(std::uint32_t value) {
    requireEntry(enumOnOff, value);
    storeAndWrite(m_exsyncOn, value, &FgLoomWrapperImpl::loomSet_Process0_Trigger_Trigger_ExsyncEnable);
}

void FgLoomWrapperImpl::set_FG_LINETRIGGERINSRC(std::uint32_t value) {
    requireEntry(enumTriggerInSource, value);
    Replacement stored(m_lineTriggerInSrc, value);
    loomSet_Process0_Trigger_Trigger_LineTrgInSourceA(std::uint32_t{0});
    loomSet_Process0_Trigger_InputSignal_LineTrgInSourceA_Input_Select(inputIndexOf(value));
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_LINETRIGGERINPOLARITY(std::uint32_t value) {
    requireEntry(enumTriggerInPolarity, value);
    storeAndWrite(m_lineTriggerInPolarity, value,
                  &FgLoomWrapperImpl::loomSet_Process0_Trigger_Trigger_LineTrgInPolarity);
}

void FgLoomWrapperImpl::set_FG_LINETRIGGERDEBOUNCING(double value) {
    requireRange(value, limitsOf<Double>(FG_LINETRIGGERDEBOUNCING));
    Replacement stored(m_lineTriggerDebouncing, value);
    loomSet_Process0_Trigger_Trigger_LineTrgDebouncingTime(value);
    loomSet_Process1_Trigger_Inputs_Debounce8_Prescale_Period(debouncePrescaler(value));
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_LINE_DOWNSCALE(std::uint32_t value) {
    requireRange(value, limitsOf<UInt>(FG_LINE_DOWNSCALE));
    storeAndWrite(m_lineDownscale, value,
                  &FgLoomWrapperImpl::loomSet_Process0_Trigger_Trigger_LineTrgDownscaler);
}

void FgLoomWrapperImpl::set_FG_LINE_DOWNSCALEINIT(std::uint32_t value) {
    // A phase above the downscale factor is accepted.
    requireRange(value, limitsOf<UInt>(FG_LINE_DOWNSCALEINIT));
    storeAndWrite(m_lineDownscaleInit, value,
                  &FgLoomWrapperImpl::loomSet_Process0_Trigger_Trigger_LineTrgPhase);
}

void FgLoomWrapperImpl::set_FG_LINEPERIODE(double value) {
    requireRange(value, periodLimits);
    Replacement stored(m_linePeriode, value);
    loomSet_Process0_Trigger_Trigger_ExsyncPeriod(value);
    stored.keep();
    // A stored exposure or delay that is now too long stays: it is checked when it is set itself.
    updateExposureRange();
    updateTriggerDelayRange();
}

void FgLoomWrapperImpl::set_FG_LINEEXPOSURE(double value) {
    requireRange(value, pulseLimits.minimum, exposureLimit());
    storeAndWrite(m_lineExposure, value, &FgLoomWrapperImpl::loomSet_Process0_Trigger_Trigger_ExsyncExposure);
}

void FgLoomWrapperImpl::set_FG_EXSYNCPOLARITY(std::uint32_t value) {
    requireEntry(enumPolarity, value);
    Replacement stored(m_exsyncPolarity, value);
    loomSet_Process0_Trigger_Trigger_ExsyncPolarity(value == FG_LOW ? 1u : 0u); // the design's is inverted
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_LINETRIGGERDELAY(double value) {
    requireRange(value, 0.0, m_linePeriode); // whatever the mode and the catalogue's own maximum
    storeAndWrite(m_lineTriggerDelay, value,
                  &FgLoomWrapperImpl::loomSet_Process0_Trigger_Trigger_Exsync2Delay);
}
