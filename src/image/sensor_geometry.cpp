// Sensor geometry and region of interest: which part of a sensor image is read, and from which corner.
//
// A right vantage point mirrors each line. A bottom one mirrors the lines of a whole frame, which must then
// fit in the buffer's DRAM. The sensor's size and the memory limit the region only in a mirrored direction.

#include "catalogue/live_records.h"
#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"
#include "image/pixel_layout.h"

#include <algorithm>

using namespace catalogue;

namespace {

constexpr UInt widthLimits = limitsOf<UInt>(FG_SENSORWIDTH);   // pixels
constexpr UInt heightLimits = limitsOf<UInt>(FG_SENSORHEIGHT); // lines

/** A divisor of 0, which a configuration file can cause, is reported as a value out of range. */
template <typename T> T nonZero(T divisor) {
    if (divisor == 0) refuse(FG_ERR_OUT_OF_RANGE);
    return divisor;
}

} // namespace

bool SensorGeometry::mirrorsLines() const {
    return m_vantagePoint == FG_VANTAGEPOINT_TOP_RIGHT || m_vantagePoint == FG_VANTAGEPOINT_BOTTOM_RIGHT;
}

bool SensorGeometry::mirrorsFrames() const {
    return m_vantagePoint == FG_VANTAGEPOINT_BOTTOM_LEFT || m_vantagePoint == FG_VANTAGEPOINT_BOTTOM_RIGHT;
}

// ---- DRAM capacity. Unsigned 64-bit arithmetic, results truncated to 32 bits.

FgLoomWrapperImpl::Dram FgLoomWrapperImpl::readDram() {
    const auto addressWidth =
        loomGet_Process0_Buffer_0_DRAM_DRAM_A_0_Imp_DRAM_RamAddressWidth<std::uint32_t>();
    const auto dataWidth = loomGet_Process0_Buffer_0_DRAM_DRAM_A_0_Imp_DRAM_RamDataWidth<std::uint32_t>();
    const std::uint64_t words = ((std::uint64_t{1} << (addressWidth % 64)) >> 1) * 3;
    return {dataWidth, dataWidth * words / nonZero(pixelLayoutOf(m_pixelFormat).bitsPerPixel())};
}

std::uint32_t FgLoomWrapperImpl::calcMaxWidthFromDram(std::uint32_t sensorHeight) {
    const Dram dram = readDram();
    return static_cast<std::uint32_t>(dram.pixels / nonZero(dram.dataWidth + sensorHeight - 1));
}

std::uint32_t FgLoomWrapperImpl::calcMaxHeightFromDram(std::uint32_t sensorWidth) {
    const Dram dram = readDram();
    return static_cast<std::uint32_t>(dram.pixels / nonZero(sensorWidth) - dram.dataWidth + 1);
}

std::uint32_t FgLoomWrapperImpl::maxSensorWidthFromDram() {
    const std::uint32_t width = calcMaxWidthFromDram(m_sensorHeight);
    const auto parallelism = loomGet_Process0_Buffer_0_LinkPixelSpace_Parallelism<std::uint32_t>();
    return parallelism != 0 ? width / parallelism * parallelism : width;
}

// ---- Limits. Differences are computed in 32 bits and wrap: too large a result fails the region check.

std::uint32_t FgLoomWrapperImpl::usableWidth() {
    if (!mirrorsFrames()) return widthLimits.maximum;
    const std::uint32_t fitting = calcMaxWidthFromDram(m_sensorHeight);
    return std::min(widthLimits.maximum, fitting);
}

std::uint32_t FgLoomWrapperImpl::widthLimit() {
    const std::uint32_t usable = usableWidth(); // read from the design even if the sensor decides
    return (mirrorsLines() ? m_sensorWidth : usable) - m_xOffset;
}

std::uint32_t FgLoomWrapperImpl::xOffsetLimit() {
    const std::uint32_t usable = usableWidth();
    return (mirrorsLines() ? m_sensorWidth : usable) - m_width;
}

void FgLoomWrapperImpl::requireReadableDram() { static_cast<void>(calcMaxHeightFromDram(m_sensorWidth)); }

std::uint32_t FgLoomWrapperImpl::heightLimit() {
    if (!mirrorsFrames()) return heightLimits.maximum;
    requireReadableDram();
    return m_sensorHeight - m_yOffset;
}

std::uint32_t FgLoomWrapperImpl::yOffsetLimit() {
    if (!mirrorsFrames()) return heightLimits.maximum;
    requireReadableDram();
    return m_sensorHeight - m_height;
}

void SensorGeometry::checkRoiX() const {
    // Without mirroring the sensor's width does not matter: only a mirrored line is read from its end.
    const std::uint64_t right = std::uint64_t{m_width} + m_xOffset;
    if (right > (mirrorsLines() ? m_sensorWidth : widthLimits.maximum)) refuse(FG_ERR_OUT_OF_RANGE);
}

void SensorGeometry::checkRoiY() const {
    const std::uint64_t bottom = std::uint64_t{m_height} + m_yOffset;
    if (mirrorsFrames() && bottom > m_sensorHeight) refuse(FG_ERR_OUT_OF_RANGE);
}

// ---- Design writes

SensorGeometry::WriteOrder SensorGeometry::orderAfter(std::uint32_t previous) {
    return previous <= FG_VANTAGEPOINT_TOP_RIGHT ? WriteOrder::heightFirst : WriteOrder::mirrorsFirst;
}

void FgLoomWrapperImpl::writeBufferGeometry(WriteOrder order) {
    const std::uint32_t sensorWidth = mirrorsLines() ? m_sensorWidth : m_xOffset + m_width;
    const std::uint32_t sensorHeight = mirrorsFrames() ? m_sensorHeight : 1;
    const auto writeMirrors = [this] {
        loomSet_Process0_Buffer_0_XMirror(std::uint32_t{mirrorsLines()});
        loomSet_Process0_Buffer_0_YMirror(std::int32_t{mirrorsFrames()}); // the one signed write
    };

    loomSet_Process0_Buffer_0_SensorWidth(sensorWidth);
    if (order == WriteOrder::heightFirst) {
        loomSet_Process0_Buffer_0_SensorHeight(sensorHeight);
        writeMirrors();
    } else {
        writeMirrors();
        loomSet_Process0_Buffer_0_SensorHeight(sensorHeight);
    }
    loomSet_Process0_Buffer_0_PixelFormat(pixelLayoutOf(m_pixelFormat).bits);
    loomSet_Process0_Buffer_0_XLength(m_width);
    loomSet_Process0_Buffer_0_XOffset(m_xOffset);
}

void FgLoomWrapperImpl::writeTriggerRange(std::uint32_t yOffset, std::uint32_t length) {
    // Zeroed first, so that the range never reaches beyond the frame while the two change.
    loomSet_Process0_Trigger_Trigger_YOffset(std::uint32_t{0});
    loomSet_Process0_Trigger_Trigger_YLength(length);
    loomSet_Process0_Trigger_Trigger_YOffset(yOffset);
}

void FgLoomWrapperImpl::writeTriggerGeometry(std::uint32_t yOffset, std::uint32_t height,
                                             std::uint32_t imgTriggerMode) {
    std::uint32_t length = 0;
    switch (imgTriggerMode) {
    case FREE_RUN:
    case ASYNC_TRIGGER:
    case ASYNC_GATED:
        length = height;
        break;
    case ASYNC_GATED_MULTIFRAME:
        length = heightLimits.maximum;
        break;
    case ASYNC_TRIGGER_MULTIFRAME:
        length = m_imgTriggerAsyncHeight;
        break;
    default:
        refuse(FG_ERR_OUT_OF_RANGE);
    }
    writeTriggerRange(yOffset, length);
    loomSet_Process0_ImageHeight_ImageHeight(height);
}

// ---- Published limits

void FgLoomWrapperImpl::updateSensorWidthRange() {
    republishMaximum(recordAt(indexOf(FG_SENSORWIDTH)), [this] {
        return mirrorsFrames() ? std::min(widthLimits.maximum, maxSensorWidthFromDram())
                               : widthLimits.maximum;
    });
}

void FgLoomWrapperImpl::updateSensorHeightRange() {
    republishMaximum(recordAt(indexOf(FG_SENSORHEIGHT)), [this] {
        return mirrorsFrames() ? std::min(heightLimits.maximum, calcMaxHeightFromDram(m_sensorWidth))
                               : heightLimits.maximum;
    });
}

void FgLoomWrapperImpl::updateWidthRange() {
    republishMaximum(recordAt(indexOf(FG_WIDTH)), [this] { return widthLimit(); });
}

void FgLoomWrapperImpl::updateHeightRange() {
    republishMaximum(recordAt(indexOf(FG_HEIGHT)), [this] { return heightLimit(); });
}

void FgLoomWrapperImpl::updateXOffsetRange() {
    republishMaximum(recordAt(indexOf(FG_XOFFSET)), [this] { return xOffsetLimit(); });
}

void FgLoomWrapperImpl::updateYOffsetRange() {
    republishMaximum(recordAt(indexOf(FG_YOFFSET)), [this] { return yOffsetLimit(); });
}

void FgLoomWrapperImpl::updateGeometryRanges() {
    updateSensorWidthRange();
    updateSensorHeightRange();
    updateWidthRange();
    updateHeightRange();
    updateXOffsetRange();
    updateYOffsetRange();
}

// ---- Setters

void FgLoomWrapperImpl::set_FG_VANTAGEPOINT(std::uint32_t value) {
    requireEntry(enumVantagePoint, value);
    Replacement stored(m_vantagePoint, value);
    checkRoiX();
    checkRoiY();
    writeBufferGeometry(orderAfter(stored.old()));
    stored.keep();
    updateGeometryRanges();
}

void FgLoomWrapperImpl::set_FG_SENSORWIDTH(std::uint32_t value) {
    requireAtLeast(value, widthLimits.minimum);
    const std::uint32_t fitting = maxSensorWidthFromDram(); // read for every vantage point
    requireAtMost(value, mirrorsFrames() ? std::min(widthLimits.maximum, fitting) : widthLimits.maximum);
    requireMultipleOf4(value);
    Replacement stored(m_sensorWidth, value);
    checkRoiX();
    writeBufferGeometry(orderAfter(stored.old()));
    stored.keep();
    updateSensorHeightRange();
    updateWidthRange();
    updateHeightRange();
    updateXOffsetRange();
    updateYOffsetRange();
}

void FgLoomWrapperImpl::set_FG_SENSORHEIGHT(std::uint32_t value) {
    requireAtLeast(value, heightLimits.minimum);
    const std::uint32_t fitting = calcMaxHeightFromDram(m_sensorWidth); // read for every vantage point
    requireAtMost(value, mirrorsFrames() ? std::min(heightLimits.maximum, fitting) : heightLimits.maximum);
    Replacement stored(m_sensorHeight, value);
    checkRoiY();
    writeBufferGeometry(orderAfter(stored.old()));
    stored.keep();
    updateSensorWidthRange();
    updateWidthRange();
    updateHeightRange();
    updateXOffsetRange();
    updateYOffsetRange();
}

void FgLoomWrapperImpl::set_FG_WIDTH(std::uint32_t value) {
    requireAtLeast(value, widthLimits.minimum);
    requireAtMost(value, widthLimit());
    requireMultipleOf4(value);
    Replacement stored(m_width, value);
    checkRoiX();
    writeBufferGeometry(orderAfter(stored.old()));
    stored.keep();
    updateSensorWidthRange();
    updateSensorHeightRange();
    updateHeightRange();
    updateXOffsetRange();
    updateYOffsetRange();
}

void FgLoomWrapperImpl::set_FG_HEIGHT(std::uint32_t value) {
    requireAtLeast(value, heightLimits.minimum);
    requireAtMost(value, heightLimit());
    Replacement stored(m_height, value);
    checkRoiY();
    writeBufferGeometry(orderAfter(stored.old()));
    writeTriggerGeometry(m_yOffset, m_height, m_imgTriggerMode);
    stored.keep();
    updateWidthRange();
    updateXOffsetRange();
    updateYOffsetRange();
}

void FgLoomWrapperImpl::set_FG_XOFFSET(std::uint32_t value) {
    requireAtMost(value, xOffsetLimit());
    requireMultipleOf4(value);
    Replacement stored(m_xOffset, value);
    checkRoiX();
    writeBufferGeometry(orderAfter(stored.old()));
    stored.keep();
    updateSensorWidthRange();
    updateSensorHeightRange();
    updateWidthRange();
}

void FgLoomWrapperImpl::set_FG_YOFFSET(std::uint32_t value) {
    requireAtMost(value, yOffsetLimit());
    Replacement stored(m_yOffset, value);
    checkRoiY();
    writeBufferGeometry(orderAfter(stored.old()));
    writeTriggerGeometry(m_yOffset, m_height, m_imgTriggerMode);
    stored.keep();
    updateSensorHeightRange();
    updateHeightRange();
}
