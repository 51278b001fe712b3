// Camera simulator: test patterns of a chosen size and speed instead of a camera.
//
// It emits 32 pixels in each cycle of 8 ns, so widths and line gaps are multiples of 32 pixels. In pixel
// frequency mode a sequence of 2000 cycles has some active ones; in the rate modes a line is stretched to a
// sequence of cycles that gives the rate. Rates read back as the counters produce them, not as requested.

#include "catalogue/live_records.h"
#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"
#include "support/conversions.h"

#include <algorithm>
#include <limits>

using namespace catalogue;

namespace {

constexpr double cycle = 8e-9; // seconds
constexpr std::uint32_t pixelsPerCycle = 32;
constexpr std::uint32_t sequence = 2000; // cycles
constexpr double halfStep = 0.5;
constexpr double maximumPixelRate = 3999999999.9999995; // per second, just below 32 pixels in each cycle
constexpr double fullPixelFrequency = maximumPixelRate / 1e6; // MHz

// Gaps included.
constexpr std::uint32_t widthBudget = limitsOf<UInt>(FG_CAMERASIMULATOR_WIDTH).maximum;   // pixels
constexpr std::uint32_t heightBudget = limitsOf<UInt>(FG_CAMERASIMULATOR_HEIGHT).maximum; // lines

constexpr Double frequencyLimits = limitsOf<Double>(FG_CAMERASIMULATOR_PIXEL_FREQUENCY);
constexpr double lowestRate = limitsOf<Double>(FG_CAMERASIMULATOR_LINERATE).minimum; // Hz, of frames too

std::uint32_t wholeCycles(std::uint32_t width) {
    return (width + pixelsPerCycle - 1) / pixelsPerCycle * pixelsPerCycle;
}

/** Truncated to the lowest 32 of 64 bits. */
std::uint32_t counted(double number) { return static_cast<std::uint32_t>(truncated<std::int64_t>(number)); }

/** The access of the parameters that depend on a speed mode. */
struct SpeedMode {
    std::uint32_t mode;
    std::uint32_t frequency, lineRate, frameRate, lineGap, frameGap; // their access
    std::uint32_t clockMode;                                         // the design's
};

constexpr SpeedMode speedModes[] = {
    {FG_PIXEL_FREQUENCY, anyTime, readOnly, readOnly, anyTime, anyTime, 0},
    {FG_LINERATE, readOnly, anyTime, readOnly, readOnly, anyTime, 1},
    {FG_FRAMERATE, readOnly, readOnly, anyTime, readOnly, readOnly, 1},
};

} // namespace

void FgLoomWrapperImpl::publishPixelFrequencyLimit() {
    publishMaximum(recordAt(indexOf(FG_CAMERASIMULATOR_PIXEL_FREQUENCY)), fullPixelFrequency);
}

// ---- Values that read back

std::uint32_t CameraSimulator::simulatorLineGap() const {
    return m_simSelectMode == FG_PIXEL_FREQUENCY ? m_simAppliedLineGap : 0;
}

std::uint32_t CameraSimulator::simulatorFrameGap() const {
    return m_simSelectMode == FG_FRAMERATE ? 0 : m_simAppliedFrameGap;
}

double FgLoomWrapperImpl::simulatorPixelFrequency(std::uint32_t mode) {
    if (mode != FG_PIXEL_FREQUENCY) return fullPixelFrequency;
    const double active = loomGet_Process0_CameraSimulator_PixelFrequency_ActivePixel_Number<std::uint32_t>();
    return pixelsPerCycle * (active - halfStep) / sequence / cycle / 1e6;
}

double FgLoomWrapperImpl::simulatorLineRate(std::uint32_t mode) {
    switch (mode) {
    case FG_PIXEL_FREQUENCY:
        return quotient(simulatorPixelFrequency(mode) * 1e6, m_simAppliedWidth + simulatorLineGap());
    case FG_LINERATE: {
        const double cycles =
            loomGet_Process0_CameraSimulator_PixelFrequency_SequenceLength_ImageWidth<std::uint32_t>();
        return 1.0 / ((cycles - halfStep) * cycle);
    }
    case FG_FRAMERATE:
        return quotient(pixelsPerCycle, cycle * m_simAppliedWidth);
    default:
        refuse(FG_ERR_NO_TRANSLATION);
    }
}

double FgLoomWrapperImpl::simulatorFrameRate(std::uint32_t mode) {
    const std::uint32_t lines = m_simHeight + simulatorFrameGap();
    switch (mode) {
    case FG_PIXEL_FREQUENCY:
        return quotient(simulatorPixelFrequency(mode) * 1e6,
                        lines * (m_simAppliedWidth + simulatorLineGap()));
    case FG_LINERATE:
        return quotient(simulatorLineRate(mode), lines);
    case FG_FRAMERATE: {
        const auto cycles =
            loomGet_Process0_CameraSimulator_PixelFrequency_SequenceLength_ImageWidth<std::uint32_t>();
        return quotient(1.0, cycle * (cycles * m_simHeight));
    }
    default:
        refuse(FG_ERR_NO_TRANSLATION);
    }
}

// Outside pixel frequency mode these numbers do not exist, and the caller's memory stays unwritten.
void FgLoomWrapperImpl::readActive(Destination<std::uint32_t> out) {
    if (m_simSelectMode != FG_PIXEL_FREQUENCY) return;
    out.store(loomGet_Process0_CameraSimulator_PixelFrequency_ActivePixel_Number<std::uint32_t>());
}

void FgLoomWrapperImpl::readPassive(Destination<std::uint32_t> out) {
    if (m_simSelectMode != FG_PIXEL_FREQUENCY) return;
    out.store(sequence - loomGet_Process0_CameraSimulator_PixelFrequency_ActivePixel_Number<std::uint32_t>());
}

// ---- Sizes in units of the counters

void FgLoomWrapperImpl::applySimulatorWidth(std::uint32_t width, std::uint32_t gap) {
    width = wholeCycles(width);
    gap = wholeCycles(gap);
    const std::uint32_t total = width + gap;
    requireAtMost(total, widthBudget);
    m_simAppliedWidth = width;
    m_simAppliedLineGap = gap;
    loomSet_Process0_CameraSimulator_Size_ImageWidth(total / pixelsPerCycle);
    // Counts the cycles up to the gap, so it takes the width.
    loomSet_Process0_CameraSimulator_LineGap_Number(width / pixelsPerCycle);
}

void FgLoomWrapperImpl::applySimulatorHeight(std::uint32_t height, std::uint32_t gap) {
    const std::uint32_t total = height + gap;
    requireAtMost(total, heightBudget);
    m_simAppliedFrameGap = gap;
    loomSet_Process0_CameraSimulator_Size_ImageHeight(total);
    loomSet_Process0_CameraSimulator_FrameGap_Number(height);
}

// ---- Limits. They follow from the rate that the counters give, not from the one requested.

std::uint32_t FgLoomWrapperImpl::simulatorWidthLimit() {
    const std::uint32_t gap = simulatorLineGap();
    const std::uint32_t budget = widthBudget - gap;
    const auto allowedBy = [&](double linesPerSecond) {
        return std::min(budget, counted(quotient(maximumPixelRate, linesPerSecond) - gap - pixelsPerCycle));
    };
    if (m_simSelectMode == FG_LINERATE) return allowedBy(currentLineRate());
    if (m_simSelectMode == FG_FRAMERATE) return allowedBy(m_simHeight * currentFrameRate());
    return budget;
}

std::uint32_t FgLoomWrapperImpl::simulatorLineGapLimit() {
    if (m_simSelectMode == FG_FRAMERATE) return 0;
    const std::uint32_t budget = widthBudget - m_simAppliedWidth;
    if (m_simSelectMode != FG_LINERATE) return budget;
    return std::min(
        budget, counted(quotient(maximumPixelRate, currentLineRate()) - m_simAppliedWidth - pixelsPerCycle));
}

std::uint32_t FgLoomWrapperImpl::simulatorHeightLimit() {
    const std::uint32_t budget = heightBudget - simulatorFrameGap();
    if (m_simSelectMode != FG_FRAMERATE) return budget;
    return std::min(budget, counted(quotient(maximumPixelRate,
                                             currentFrameRate() * (pixelsPerCycle + m_simAppliedWidth))));
}

std::uint32_t CameraSimulator::simulatorFrameGapLimit() const {
    return m_simSelectMode == FG_PIXEL_FREQUENCY ? heightBudget - m_simHeight : 0;
}

double CameraSimulator::simulatorLineRateLimit() const {
    return maximumPixelRate / (m_simAppliedWidth + pixelsPerCycle);
}

double CameraSimulator::simulatorFrameRateLimit() const {
    return quotient(maximumPixelRate, m_simHeight * (m_simAppliedWidth + pixelsPerCycle));
}

void FgLoomWrapperImpl::updateSimWidthRange() {
    republishMaximum(recordAt(indexOf(FG_CAMERASIMULATOR_WIDTH)), [this] { return simulatorWidthLimit(); });
}

void FgLoomWrapperImpl::updateSimLineGapRange() {
    republishMaximum(recordAt(indexOf(FG_CAMERASIMULATOR_LINE_GAP)),
                     [this] { return simulatorLineGapLimit(); });
}

void FgLoomWrapperImpl::updateSimHeightRange() {
    republishMaximum(recordAt(indexOf(FG_CAMERASIMULATOR_HEIGHT)), [this] { return simulatorHeightLimit(); });
}

void FgLoomWrapperImpl::updateSimFrameGapRange() {
    publishMaximum(recordAt(indexOf(FG_CAMERASIMULATOR_FRAME_GAP)), simulatorFrameGapLimit());
}

void FgLoomWrapperImpl::updateSimLineRateRange() {
    publishMaximum(recordAt(indexOf(FG_CAMERASIMULATOR_LINERATE)), aboveZero(simulatorLineRateLimit()));
}

void FgLoomWrapperImpl::updateSimFrameRateRange() {
    publishMaximum(recordAt(indexOf(FG_CAMERASIMULATOR_FRAMERATE)), aboveZero(simulatorFrameRateLimit()));
}

// ---- Speed

void FgLoomWrapperImpl::set_FG_CAMERASIMULATOR_PIXEL_FREQUENCY(double value) {
    // The bound is the catalogue's maximum, a placeholder below the minimum, not the published one: no finite
    // value passes, so this mode cannot be programmed.
    requireRange(value, frequencyLimits);
    Replacement stored(m_simPixelFrequency, value);
    const std::uint32_t active = counted(halfStep + cycle * (value * 1e6 * sequence) / pixelsPerCycle);
    if (active == 0) refuse(FG_ERR_OUT_OF_RANGE);
    loomSet_Process0_CameraSimulator_PixelFrequency_ActivePixel_Number(active);
    loomSet_Process0_CameraSimulator_PixelFrequency_RepeatPat_Divisor(sequence / active);
    loomSet_Process0_CameraSimulator_PixelFrequency_SequenceLength_ImageWidth(sequence);
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_CAMERASIMULATOR_LINERATE(double value) {
    requireRange(value, lowestRate, simulatorLineRateLimit());
    Replacement stored(m_simLineRate, value);
    const std::uint32_t cycles = counted(halfStep + 1.0 / (value * cycle));
    loomSet_Process0_CameraSimulator_PixelFrequency_SequenceLength_ImageWidth(cycles);
    loomSet_Process0_CameraSimulator_PixelFrequency_ActivePixel_Number(std::uint32_t{1});
    applySimulatorWidth(m_simAppliedWidth, 0);
    m_simAppliedFrameRate = currentFrameRate();
    stored.keep();
    updateSimWidthRange();
    updateSimLineGapRange();
}

void FgLoomWrapperImpl::set_FG_CAMERASIMULATOR_FRAMERATE(double value) {
    requireRange(value, lowestRate, simulatorFrameRateLimit());
    Replacement stored(m_simFrameRate, value);
    const double period = 1.0 / (value * cycle); // in cycles
    const std::uint32_t cycles = counted(halfStep + quotient(period, m_simHeight));
    loomSet_Process0_CameraSimulator_PixelFrequency_SequenceLength_ImageWidth(cycles);
    loomSet_Process0_CameraSimulator_PixelFrequency_ActivePixel_Number(std::uint32_t{1});
    applySimulatorWidth(m_simAppliedWidth, 0);
    applySimulatorHeight(m_simHeight, 0);
    m_simAppliedFrameRate = simulatorFrameRate(FG_FRAMERATE);
    stored.keep();
    updateSimWidthRange();
    updateSimHeightRange();
}

void FgLoomWrapperImpl::set_FG_CAMERASIMULATOR_SELECT_MODE(std::uint32_t value) {
    requireEntry(enumSimulatorSpeedMode, value);
    Replacement stored(m_simSelectMode, value);
    const SpeedMode& mode = *std::ranges::find(speedModes, value, &SpeedMode::mode);
    publishAccess(recordAt(indexOf(FG_CAMERASIMULATOR_PIXEL_FREQUENCY)), mode.frequency);
    publishAccess(recordAt(indexOf(FG_CAMERASIMULATOR_LINERATE)), mode.lineRate);
    publishAccess(recordAt(indexOf(FG_CAMERASIMULATOR_FRAMERATE)), mode.frameRate);
    publishAccess(recordAt(indexOf(FG_CAMERASIMULATOR_LINE_GAP)), mode.lineGap);
    publishAccess(recordAt(indexOf(FG_CAMERASIMULATOR_FRAME_GAP)), mode.frameGap);
    loomSet_Process0_CameraSimulator_ControlPixelClock_Mode(mode.clockMode);
    applySimulatorWidth(m_simAppliedWidth, m_simLineGap);
    applySimulatorHeight(m_simHeight, m_simFrameGap);
    switch (value) {
    case FG_LINERATE:
        set_FG_CAMERASIMULATOR_LINERATE(std::min(m_simLineRate, simulatorLineRateLimit()));
        break;
    case FG_FRAMERATE:
        set_FG_CAMERASIMULATOR_FRAMERATE(m_simAppliedFrameRate);
        break;
    default:
        // Always refused: pixel frequency mode reports a failure after all of the above is done.
        set_FG_CAMERASIMULATOR_PIXEL_FREQUENCY(m_simPixelFrequency);
    }
    stored.keep();
    updateSimWidthRange();
    updateSimLineGapRange();
    updateSimHeightRange();
    updateSimFrameGapRange();
}

// ---- Sizes. A width below the limit can still fail when rounded up.

void FgLoomWrapperImpl::set_FG_CAMERASIMULATOR_WIDTH(std::uint32_t value) {
    requireAtLeast(value, 1);
    requireAtMost(value, simulatorWidthLimit());
    applySimulatorWidth(value, simulatorLineGap());
    updateSimLineGapRange();
    updateSimHeightRange();
    updateSimLineRateRange();
    updateSimFrameRateRange();
}

void FgLoomWrapperImpl::set_FG_CAMERASIMULATOR_LINE_GAP(std::uint32_t value) {
    requireAtMost(value, simulatorLineGapLimit());
    Replacement stored(m_simLineGap, value);
    applySimulatorWidth(m_simAppliedWidth, value);
    stored.keep();
    updateSimWidthRange();
}

void FgLoomWrapperImpl::set_FG_CAMERASIMULATOR_HEIGHT(std::uint32_t value) {
    requireAtLeast(value, 1);
    requireAtMost(value, simulatorHeightLimit());
    Replacement stored(m_simHeight, value);
    applySimulatorHeight(value, simulatorFrameGap());
    if (m_simSelectMode == FG_FRAMERATE) set_FG_CAMERASIMULATOR_FRAMERATE(m_simFrameRate);
    stored.keep();
    updateSimWidthRange();
    updateSimFrameGapRange();
    updateSimFrameRateRange();
}

void FgLoomWrapperImpl::set_FG_CAMERASIMULATOR_FRAME_GAP(std::uint32_t value) {
    requireAtMost(value, simulatorFrameGapLimit());
    Replacement stored(m_simFrameGap, value);
    applySimulatorHeight(m_simHeight, value);
    stored.keep();
    updateSimHeightRange();
}

// ---- Source, pattern, trigger

void FgLoomWrapperImpl::set_FG_CAMERASIMULATOR_ENABLE(std::uint32_t value) {
    requireEntry(enumSimulatorSource, value);
    storeAndWrite(m_simEnable, value,
                  &FgLoomWrapperImpl::loomSet_Process0_CameraSimulator_Enable_SelectSource);
}

void FgLoomWrapperImpl::set_FG_CAMERASIMULATOR_PATTERN(std::uint32_t value) {
    requireEntry(enumSimulatorPattern, value);
    Replacement stored(m_simPattern, value);
    loomSet_Process0_CameraSimulator_EnableX_Enable_Value(std::uint32_t{value != FG_VERTICAL});
    loomSet_Process0_CameraSimulator_Y_Divisor(std::uint32_t{value == FG_HORIZONTAL ? 1u : 256u});
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_CAMERASIMULATOR_PATTERN_OFFSET(std::uint32_t value) {
    requireRange(value, limitsOf<UInt>(FG_CAMERASIMULATOR_PATTERN_OFFSET));
    storeAndWrite(m_simPatternOffset, value,
                  &FgLoomWrapperImpl::loomSet_Process0_CameraSimulator_Offset_Value);
}

void FgLoomWrapperImpl::set_FG_CAMERASIMULATOR_ROLL(std::uint32_t value) {
    requireEntry(enumOnOff, value);
    Replacement stored(m_simRoll, value);
    loomSet_Process0_CameraSimulator_Frame_Divisor(std::uint32_t{value == FG_ON ? 256u : 1u});
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_CAMERASIMULATOR_TRIGGER_MODE(std::uint32_t value) {
    requireEntry(enumSimulatorTriggerMode, value);
    Replacement stored(m_simTriggerMode, value);
    loomSet_Process0_CameraSimulator_TriggerValve_FreeRun_Select(std::uint32_t{value == SIMULATION_FREE_RUN});
    loomSet_Process0_CameraSimulator_TriggerValve_TriggerValve_Mode(
        std::uint32_t{value == RISING_EDGE_TRIGGERS_LINE ? 1u : 2u});
    stored.keep();
}
