/**
 * The published tree, one row for each group and each parameter, in reading order.
 *
 * A group's depth tells where it hangs: below the last group of the depth above. A parameter belongs to the
 * group read last. In the tree itself a group's sub-groups come before its own parameters.
 */
#ifndef CATALOGUE_PARAMETER_TREE_H
#define CATALOGUE_PARAMETER_TREE_H

#include "catalogue/enumerations.h"
#include "vexo/register_info.h"

#include <cstdint>
#include <variant>

namespace catalogue {

/** What may be done with a parameter, as RegisterInfo::access says it. */
enum Access : int {
    readOnly = REGISTER_ACCESS_READ,
    betweenAcquisitions = readOnly | REGISTER_ACCESS_WRITE,
    anyTime = betweenAcquisitions | REGISTER_ACCESS_WRITE_WHILE_ACQUIRING,
};

/** Limits of a number. Some records publish limits that say nothing (0 to 0) or that the bring-up overwrites.
 */
template <typename T> struct Range { T minimum, maximum, increment; };

using UInt = Range<std::uint32_t>;
using Int = Range<std::int32_t>;
using UInt64 = Range<std::uint64_t>;
using Int64 = Range<std::int64_t>;
using Double = Range<double>;

struct UIntField {
    std::int32_t elementCount;
    std::uint32_t minimum, maximum, increment;
};

struct Enumeration {
    EnumTable entries;
};

struct Text {
    const char* value;
};

struct Group {
    int depth;
};

/** One row: a group, or a parameter with what its kind needs. */
struct TreeRow {
    int id = 0;
    const char* label;
    std::variant<Group, UInt, Int, UInt64, Int64, Double, UIntField, Enumeration, Text> content;
    Access access{};
    int paramClass = 0;
    const char* unit = "";
};

/** The micro sign in ISO 8859-1, one byte. */
inline constexpr const char* microseconds = "\xB5"
                                            "s";

// One row, one line.
// clang-format off
inline constexpr TreeRow parameterTree[] = {
    {.label = "Camera Link HS", .content = Group{.depth = 0}},
    {.id = FG_PIXELFORMAT, .label = "Pixel Format", .content = Enumeration{enumPixelFormat}, .access = anyTime, .paramClass = 1},
    {.id = FG_LINEORDER, .label = "Line order", .content = Enumeration{enumLineOrder}, .access = anyTime, .paramClass = 1},
    {.label = "Pulse Message Trigger Mapping", .content = Group{.depth = 1}},
    {.id = FG_CLHS_TRIGGER_PULSE_MESSAGE, .label = "CLHS Pulse Message", .content = Enumeration{enumPulseMessage}, .access = anyTime, .paramClass = 1},
    {.label = "Sensor Geometry", .content = Group{.depth = 0}},
    {.id = FG_VANTAGEPOINT, .label = "Vantage Point", .content = Enumeration{enumVantagePoint}, .access = betweenAcquisitions, .paramClass = 1},
    {.id = FG_SENSORWIDTH, .label = "Sensor Width", .content = UInt{4, 16384, 4}, .access = betweenAcquisitions, .paramClass = 2, .unit = "pixel"},
    {.id = FG_SENSORHEIGHT, .label = "Sensor Height", .content = UInt{1, 1398101, 1}, .access = betweenAcquisitions, .paramClass = 2, .unit = "pixel"},
    {.label = "ROI", .content = Group{.depth = 0}},
    {.id = FG_WIDTH, .label = "Width", .content = UInt{4, 16384, 4}, .access = betweenAcquisitions, .paramClass = 2, .unit = "pixel"},
    {.id = FG_HEIGHT, .label = "Height", .content = UInt{1, 1398101, 1}, .access = betweenAcquisitions, .paramClass = 2, .unit = "pixel"},
    {.id = FG_XOFFSET, .label = "XOffset", .content = UInt{0, 16380, 4}, .access = betweenAcquisitions, .paramClass = 2, .unit = "pixel"},
    {.id = FG_YOFFSET, .label = "YOffset", .content = UInt{0, 1398100, 1}, .access = betweenAcquisitions, .paramClass = 2, .unit = "pixel"},
    {.label = "Digital I/O", .content = Group{.depth = 0}},
    {.label = "Camera", .content = Group{.depth = 1}},
    {.id = FG_TRIGGERCAMERA_SOURCE, .label = "Camera Trigger Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGERCAMERA_POLARITY, .label = "Camera Trigger Output Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.label = "GPO", .content = Group{.depth = 1}},
    {.id = FG_TRIGGEROUT_GPO_0_SOURCE, .label = "GPO 0 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_GPO_0_POLARITY, .label = "GPO 0 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_GPO_1_SOURCE, .label = "GPO 1 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_GPO_1_POLARITY, .label = "GPO 1 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_GPO_2_SOURCE, .label = "GPO 2 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_GPO_2_POLARITY, .label = "GPO 2 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_GPO_3_SOURCE, .label = "GPO 3 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_GPO_3_POLARITY, .label = "GPO 3 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_GPO_4_SOURCE, .label = "GPO 4 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_GPO_4_POLARITY, .label = "GPO 4 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_GPO_5_SOURCE, .label = "GPO 5 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_GPO_5_POLARITY, .label = "GPO 5 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_GPO_6_SOURCE, .label = "GPO 6 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_GPO_6_POLARITY, .label = "GPO 6 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_GPO_7_SOURCE, .label = "GPO 7 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_GPO_7_POLARITY, .label = "GPO 7 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_FRONT_GPO_0_SOURCE, .label = "Front GPO 0 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_FRONT_GPO_0_POLARITY, .label = "Front GPO 0 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_FRONT_GPO_1_SOURCE, .label = "Front GPO 1 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1},
    {.id = FG_TRIGGEROUT_FRONT_GPO_1_POLARITY, .label = "Front GPO 1 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.id = FG_DIGIO_OUTPUT, .label = "Legacy Digital Output", .content = Int{-1, 3, 1}, .access = anyTime, .paramClass = 1},
    {.label = "GPI", .content = Group{.depth = 1}},
    {.id = FG_DIGIO_INPUT, .label = "Digital Input", .content = UInt{0, 4095, 1}, .access = readOnly, .paramClass = 1},
    {.label = "Event Source", .content = Group{.depth = 1}},
    {.id = FG_CUSTOM_SIGNAL_EVENT_0_SOURCE, .label = "Custom Signal Event 0 Source", .content = Enumeration{enumSignalSourceExtended}, .access = anyTime, .paramClass = 1},
    {.id = FG_CUSTOM_SIGNAL_EVENT_0_POLARITY, .label = "Custom Signal Event 0 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.id = FG_CUSTOM_SIGNAL_EVENT_1_SOURCE, .label = "Custom Signal Event 1 Source", .content = Enumeration{enumSignalSourceExtended}, .access = anyTime, .paramClass = 1},
    {.id = FG_CUSTOM_SIGNAL_EVENT_1_POLARITY, .label = "Custom Signal Event 1 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.label = "Line Trigger / ExSync", .content = Group{.depth = 0}},
    {.id = FG_LINETRIGGERMODE, .label = "Line Trigger Mode", .content = Enumeration{enumLineTriggerMode}, .access = betweenAcquisitions, .paramClass = 1},
    {.id = FG_EXSYNCON, .label = "Exsync Enable", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1},
    {.label = "Line Trigger Input", .content = Group{.depth = 1}},
    {.id = FG_LINETRIGGERINSRC, .label = "Source A", .content = Enumeration{enumTriggerInSource}, .access = anyTime, .paramClass = 1},
    {.id = FG_LINETRIGGERINPOLARITY, .label = "Input Polarity", .content = Enumeration{enumTriggerInPolarity}, .access = anyTime, .paramClass = 1},
    {.id = FG_LINETRIGGERDEBOUNCING, .label = "Debouncing Time", .content = Double{0.008, 65.0, 0.008}, .access = anyTime, .paramClass = 1, .unit = microseconds},
    {.label = "Downscale", .content = Group{.depth = 2}},
    {.id = FG_LINE_DOWNSCALE, .label = "Downscale", .content = UInt{1, 255, 1}, .access = betweenAcquisitions, .paramClass = 1, .unit = "pulses"},
    {.id = FG_LINE_DOWNSCALEINIT, .label = "Phase", .content = UInt{1, 255, 1}, .access = betweenAcquisitions, .paramClass = 1, .unit = "pulses"},
    {.label = "Shaft Encoder A/B Filter", .content = Group{.depth = 1}},
    {.id = FG_SHAFTENCODERON, .label = "Enable", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1},
    {.id = FG_SHAFTENCODERMODE, .label = "Shaft Encoder Mode", .content = Enumeration{enumShaftEncoderMode}, .access = anyTime, .paramClass = 1},
    {.id = FG_SHAFTENCODERINSRC, .label = "Source B", .content = Enumeration{enumTriggerInSource}, .access = anyTime, .paramClass = 1},
    {.id = FG_SHAFTENCODERLEADING, .label = "Leading Signal", .content = Enumeration{enumShaftEncoderLeading}, .access = anyTime, .paramClass = 1},
    {.id = FG_SHAFTENCODER_COMPENSATION_ENABLE, .label = "Compensation Enable", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1},
    {.id = FG_SHAFTENCODER_COMPENSATION_COUNT, .label = "Compensation Count", .content = UInt{0, 1048575, 1}, .access = anyTime, .paramClass = 1, .unit = "pulses"},
    {.label = "ExSync Output", .content = Group{.depth = 1}},
    {.id = FG_LINEPERIODE, .label = "Period", .content = Double{0.512, 2097.144, 0.008}, .access = anyTime, .paramClass = 1, .unit = microseconds},
    {.id = FG_LINEEXPOSURE, .label = "Exposure Time", .content = Double{0.512, 1048.568, 0.008}, .access = anyTime, .paramClass = 2, .unit = microseconds},
    {.id = FG_EXSYNCPOLARITY, .label = "Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.id = FG_LINETRIGGERDELAY, .label = "Delay->Exsync", .content = Double{0.0, 1048.568, 0.008}, .access = anyTime, .paramClass = 2, .unit = microseconds},
    {.label = "Image Trigger / Flash", .content = Group{.depth = 0}},
    {.id = FG_IMGTRIGGERMODE, .label = "Mode", .content = Enumeration{enumImageTriggerMode}, .access = betweenAcquisitions, .paramClass = 1},
    {.id = FG_IMGTRIGGERON, .label = "Image Trigger Enable", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1},
    {.id = FG_FLASHON, .label = "Flash Enable", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1},
    {.id = FG_IMGTRIGGER_ASYNC_HEIGHT, .label = "Async Image Trigger Height", .content = UInt{1, 16777216, 1}, .access = betweenAcquisitions, .paramClass = 1, .unit = "lines"},
    {.id = FG_IMGTRIGGER_IS_BUSY, .label = "Image Trigger is Busy", .content = Enumeration{enumBusy}, .access = readOnly, .paramClass = 1},
    {.label = "Image Trigger Input", .content = Group{.depth = 1}},
    {.id = FG_IMGTRIGGERINSRC, .label = "Source", .content = Enumeration{enumImageTriggerInSource}, .access = anyTime, .paramClass = 1},
    {.id = FG_IMGTRIGGERINPOLARITY, .label = "Polarity", .content = Enumeration{enumTriggerInPolarity}, .access = anyTime, .paramClass = 1},
    {.id = FG_IMGTRIGGERGATEDELAY, .label = "Gate Delay", .content = UInt{0, 65535, 1}, .access = betweenAcquisitions, .paramClass = 1, .unit = "lines"},
    {.id = FG_IMGTRIGGERDEBOUNCING, .label = "Debouncing Time", .content = Double{0.008, 65.0, 0.008}, .access = anyTime, .paramClass = 1, .unit = microseconds},
    {.id = FG_STROBEPULSEDELAY, .label = "Flash Delay->Image Trigger", .content = UInt{0, 65535, 1}, .access = betweenAcquisitions, .paramClass = 1, .unit = "lines"},
    {.label = "Flash", .content = Group{.depth = 2}},
    {.id = FG_FLASH_POLARITY, .label = "Flash Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.label = "Software Trigger", .content = Group{.depth = 2}},
    {.id = FG_SENDSOFTWARETRIGGER, .label = "Software Trigger Pulse", .content = Enumeration{enumApply}, .access = anyTime, .paramClass = 1},
    {.id = FG_SETSOFTWARETRIGGER, .label = "Software Trigger State", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.label = "Signal Analyzer", .content = Group{.depth = 0}},
    {.id = FG_SIGNAL_ANALYZER_0_SOURCE, .label = "Signal Analyzer 0 Source", .content = Enumeration{enumSignalSourceExtended}, .access = anyTime, .paramClass = 1},
    {.id = FG_SIGNAL_ANALYZER_0_POLARITY, .label = "Signal Analyzer 0 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.id = FG_SIGNAL_ANALYZER_0_PERIOD_CURRENT, .label = "Signal Analyzer 0 Current Period", .content = Double{0.008, 34359738.36, 0.008}, .access = readOnly, .paramClass = 1, .unit = microseconds},
    {.id = FG_SIGNAL_ANALYZER_0_PERIOD_MAX, .label = "Signal Analyzer 0 Max Period", .content = Double{0.008, 34359738.36, 0.008}, .access = readOnly, .paramClass = 1, .unit = microseconds},
    {.id = FG_SIGNAL_ANALYZER_0_PERIOD_MIN, .label = "Signal Analyzer 0 Min Period", .content = Double{0.008, 34359738.36, 0.008}, .access = readOnly, .paramClass = 1, .unit = microseconds},
    {.id = FG_SIGNAL_ANALYZER_0_PULSE_COUNT, .label = "Signal Analyzer 0 Pulse Count", .content = UInt{0, 4294967295, 1}, .access = readOnly, .paramClass = 1, .unit = microseconds},
    {.id = FG_SIGNAL_ANALYZER_1_SOURCE, .label = "Signal Analyzer 1 Source", .content = Enumeration{enumSignalSourceExtended}, .access = anyTime, .paramClass = 1},
    {.id = FG_SIGNAL_ANALYZER_1_POLARITY, .label = "Signal Analyzer 1 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1},
    {.id = FG_SIGNAL_ANALYZER_1_PERIOD_CURRENT, .label = "Signal Analyzer 1 Current Period", .content = Double{0.008, 34359738.36, 0.008}, .access = readOnly, .paramClass = 1, .unit = microseconds},
    {.id = FG_SIGNAL_ANALYZER_1_PERIOD_MAX, .label = "Signal Analyzer 1 Max Period", .content = Double{0.008, 536870.911875, 0.008}, .access = readOnly, .paramClass = 1, .unit = microseconds},
    {.id = FG_SIGNAL_ANALYZER_1_PERIOD_MIN, .label = "Signal Analyzer 1 Min Period", .content = Double{0.008, 536870.911875, 0.008}, .access = readOnly, .paramClass = 1, .unit = microseconds},
    {.id = FG_SIGNAL_ANALYZER_1_PULSE_COUNT, .label = "Signal Analyzer 1 Pulse Count", .content = UInt{0, 4294967295, 1}, .access = readOnly, .paramClass = 1, .unit = microseconds},
    {.id = FG_SIGNAL_ANALYZER_PULSE_COUNT_DIFFERENCE, .label = "Signal Analyzer Pulse Count Difference", .content = Int64{-4294967296, 4294967295, 1}, .access = readOnly, .paramClass = 1, .unit = microseconds},
    {.id = FG_SIGNAL_ANALYZER_CLEAR, .label = "Signal Analyzer Clear", .content = Enumeration{enumApply}, .access = anyTime, .paramClass = 1},
    {.label = "Overflow", .content = Group{.depth = 0}},
    {.id = FG_FILLLEVEL, .label = "Buffer fill level", .content = UInt{0, 100, 1}, .access = readOnly, .paramClass = 1, .unit = "%"},
    {.id = FG_OVERFLOW, .label = "Buffer overflow", .content = UInt{0, 1, 1}, .access = readOnly, .paramClass = 1},
    {.label = "Image Selector", .content = Group{.depth = 0}},
    {.id = FG_IMG_SELECT_PERIOD, .label = "Image select period", .content = UInt{1, 256, 1}, .access = anyTime, .paramClass = 1, .unit = "image"},
    {.id = FG_IMG_SELECT, .label = "Image select", .content = UInt{0, 255, 1}, .access = anyTime, .paramClass = 1, .unit = "image"},
    {.label = "White Balance", .content = Group{.depth = 0}},
    {.id = FG_SCALINGFACTOR_RED, .label = "Red Gain", .content = Double{0.0, 3.9990234375, 0.0009765625}, .access = anyTime, .paramClass = 1},
    {.id = FG_SCALINGFACTOR_BLUE, .label = "Blue Gain", .content = Double{0.0, 3.9990234375, 0.0009765625}, .access = anyTime, .paramClass = 1},
    {.id = FG_SCALINGFACTOR_GREEN, .label = "Green Gain", .content = Double{0.0, 3.9990234375, 0.0009765625}, .access = anyTime, .paramClass = 1},
    {.label = "Lookup Table", .content = Group{.depth = 0}},
    {.id = FG_LUT_ENABLE, .label = "Enabled", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1},
    {.id = FG_LUT_TYPE, .label = "Type", .content = Enumeration{enumLutType}, .access = anyTime, .paramClass = 1},
    {.id = FG_LUT_VALUE_RED, .label = "Red LUT Values", .content = UIntField{16384, 0, 65535, 1}, .access = anyTime, .paramClass = 1},
    {.id = FG_LUT_VALUE_GREEN, .label = "Green LUT Values", .content = UIntField{16384, 0, 65535, 1}, .access = anyTime, .paramClass = 1},
    {.id = FG_LUT_VALUE_BLUE, .label = "Blue LUT Values", .content = UIntField{16384, 0, 65535, 1}, .access = anyTime, .paramClass = 1},
    {.id = FG_LUT_CUSTOM_FILE, .label = "Load File", .content = Text{"*.lut"}, .access = anyTime, .paramClass = 1},
    {.id = FG_LUT_SAVE_FILE, .label = "Save File", .content = Text{"*.lut"}, .access = anyTime, .paramClass = 1},
    {.label = "Applet Properties", .content = Group{.depth = 1}},
    {.id = FG_LUT_IMPLEMENTATION_TYPE, .label = "LUT Implementation Type", .content = Enumeration{enumLutImplementation}, .access = readOnly, .paramClass = 1},
    {.id = FG_LUT_IN_BITS, .label = "LUT In Bits", .content = UInt{0, 0, 0}, .access = readOnly, .paramClass = 1, .unit = "bit"},
    {.id = FG_LUT_OUT_BITS, .label = "LUT Out Bits", .content = UInt{0, 0, 0}, .access = readOnly, .paramClass = 1, .unit = "bit"},
    {.label = "Processing", .content = Group{.depth = 0}},
    {.id = FG_PROCESSING_OFFSET, .label = "Offset", .content = Double{-1.0, 1.0, 2.220446049250313e-16}, .access = anyTime, .paramClass = 1},
    {.id = FG_PROCESSING_GAIN, .label = "Gain", .content = Double{0.0, 16384.0, 2.220446049250313e-16}, .access = anyTime, .paramClass = 1},
    {.id = FG_PROCESSING_GAMMA, .label = "Gamma", .content = Double{-1000.0, 1000.0, 2.220446049250313e-16}, .access = anyTime, .paramClass = 1},
    {.id = FG_PROCESSING_INVERT, .label = "Invert", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1},
    {.label = "Output Format", .content = Group{.depth = 0}},
    {.id = FG_FORMAT, .label = "Output Format", .content = Enumeration{enumOutputFormat}, .access = betweenAcquisitions, .paramClass = 1},
    {.id = FG_BITALIGNMENT, .label = "Alignment", .content = Enumeration{enumBitAlignment}, .access = anyTime, .paramClass = 1},
    {.id = FG_PIXELDEPTH, .label = "Pixel Depth", .content = UInt{0, 128, 1}, .access = readOnly, .paramClass = 1, .unit = "bit"},
    {.id = FG_CUSTOM_BIT_SHIFT_RIGHT, .label = "Bit Shift Right", .content = UInt{0, 15, 1}, .access = anyTime, .paramClass = 2, .unit = "bit"},
    {.label = "Camera Simulator", .content = Group{.depth = 0}},
    {.id = FG_CAMERASIMULATOR_ENABLE, .label = "Image Source", .content = Enumeration{enumSimulatorSource}, .access = anyTime, .paramClass = 1},
    {.id = FG_CAMERASIMULATOR_WIDTH, .label = "Width", .content = UInt{1, 294920, 1}, .access = anyTime, .paramClass = 2, .unit = "pixel"},
    {.id = FG_CAMERASIMULATOR_LINE_GAP, .label = "Line Gap", .content = UInt{0, 294920, 1}, .access = anyTime, .paramClass = 2, .unit = "pixel"},
    {.id = FG_CAMERASIMULATOR_HEIGHT, .label = "Height", .content = UInt{1, 65536, 1}, .access = anyTime, .paramClass = 2, .unit = "pixel"},
    {.id = FG_CAMERASIMULATOR_FRAME_GAP, .label = "Frame Gap", .content = UInt{0, 65536, 1}, .access = anyTime, .paramClass = 2, .unit = "pixel"},
    {.id = FG_CAMERASIMULATOR_PATTERN, .label = "Pattern", .content = Enumeration{enumSimulatorPattern}, .access = anyTime, .paramClass = 1},
    {.id = FG_CAMERASIMULATOR_PATTERN_OFFSET, .label = "Pattern Offset", .content = UInt{0, 255, 1}, .access = anyTime, .paramClass = 2, .unit = "pixel value"},
    {.id = FG_CAMERASIMULATOR_ROLL, .label = "Roll", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1},
    {.id = FG_CAMERASIMULATOR_SELECT_MODE, .label = "Speed Mode", .content = Enumeration{enumSimulatorSpeedMode}, .access = anyTime, .paramClass = 1},
    {.id = FG_CAMERASIMULATOR_PIXEL_FREQUENCY, .label = "Pixel Frequency", .content = Double{0.9999999999999998, -1.0, 2.0}, .access = anyTime, .paramClass = 2, .unit = "MHz"},
    {.id = FG_CAMERASIMULATOR_LINERATE, .label = "Line Rate", .content = Double{0.15, -17857.14285714286, 7e-11}, .access = anyTime, .paramClass = 2, .unit = "Hz"},
    {.id = FG_CAMERASIMULATOR_FRAMERATE, .label = "Framerate", .content = Double{0.15, -17857.14285714286, 7e-11}, .access = anyTime, .paramClass = 2, .unit = "Hz"},
    {.id = FG_CAMERASIMULATOR_TRIGGER_MODE, .label = "Trigger Mode", .content = Enumeration{enumSimulatorTriggerMode}, .access = anyTime, .paramClass = 1},
    {.id = FG_CAMERASIMULATOR_ACTIVE, .label = "Active Parts", .content = UInt{1, 2000, 1}, .access = readOnly, .paramClass = 1, .unit = "pixel"},
    {.id = FG_CAMERASIMULATOR_PASSIVE, .label = "Passive Parts", .content = UInt{1, 2000, 1}, .access = readOnly, .paramClass = 1, .unit = "pixel"},
    {.label = "Miscellaneous", .content = Group{.depth = 0}},
    {.id = FG_TIMEOUT, .label = "Timeout", .content = UInt{2, 2147483646, 1}, .access = anyTime, .paramClass = 1, .unit = "seconds"},
    {.id = FG_APPLET_VERSION, .label = "Applet version", .content = UInt{0, 0, 0}, .access = readOnly, .paramClass = 1},
    {.id = FG_APPLET_REVISION, .label = "Applet revision", .content = UInt{0, 0, 0}, .access = readOnly, .paramClass = 1},
    {.id = FG_APPLET_ID, .label = "Applet Id", .content = Text{""}, .access = readOnly, .paramClass = 1},
    {.id = FG_APPLET_BUILD_TIME, .label = "Build Time", .content = Text{""}, .access = readOnly, .paramClass = 1},
    {.id = FG_TSL_FILE, .label = "TSL file", .content = Text{"*.tsl"}, .access = readOnly, .paramClass = 1},
    {.id = FG_DMASTATUS, .label = "DMA Status", .content = UInt{0, 0, 0}, .access = readOnly, .paramClass = 1},
    {.id = FG_CAMSTATUS, .label = "Camera Status", .content = UInt{0, 1, 1}, .access = readOnly, .paramClass = 1},
    {.id = FG_CAMSTATUS_EXTENDED, .label = "Camera Status Extended", .content = UInt{0, 255, 1}, .access = readOnly, .paramClass = 1},
    {.id = FG_SYSTEMMONITOR_FPGA_TEMPERATURE, .label = "FGPA Temperature", .content = Double{0.0, 1000.0, 0.0}, .access = readOnly, .paramClass = 1, .unit = "Celsius"},
    {.id = FG_SYSTEMMONITOR_FPGA_VCC_INT, .label = "FGPA Vcc Int", .content = Double{-1000.0, 1000.0, 0.0}, .access = readOnly, .paramClass = 1, .unit = "V"},
    {.id = FG_SYSTEMMONITOR_FPGA_VCC_AUX, .label = "FGPA Vcc Aux", .content = Double{-1000.0, 1000.0, 0.0}, .access = readOnly, .paramClass = 1, .unit = "V"},
    {.id = FG_SYSTEMMONITOR_FPGA_VCC_BRAM, .label = "FGPA Vcc BRAM", .content = Double{-1000.0, 1000.0, 0.0}, .access = readOnly, .paramClass = 1, .unit = "V"},
    {.id = FG_SYSTEMMONITOR_CURRENT_LINK_WIDTH, .label = "Current Link Width", .content = UInt{0, 15, 0}, .access = readOnly, .paramClass = 1, .unit = "lanes"},
    {.id = FG_SYSTEMMONITOR_CURRENT_LINK_SPEED, .label = "Current Link Speed", .content = Double{0.0, 1000.0, 0.0}, .access = readOnly, .paramClass = 1, .unit = "GB/s"},
    {.id = FG_SYSTEMMONITOR_PCIE_LINK_GEN2_CAPABLE, .label = "PCIe Link Gen 2 Capable", .content = Enumeration{enumYesNo}, .access = readOnly, .paramClass = 1},
    {.id = FG_SYSTEMMONITOR_PCIE_LINK_PARTNER_GEN2_CAPABLE, .label = "PCIe Link Partner Gen 2 Capable", .content = Enumeration{enumYesNo}, .access = readOnly, .paramClass = 1},
    {.id = FG_SYSTEMMONITOR_PCIE_TRAINED_PAYLOAD_SIZE, .label = "PCIe Trained Payload Size", .content = UInt{0, 1024, 0}, .access = readOnly, .paramClass = 1, .unit = "byte"},
    {.id = FG_SYSTEMMONITOR_EXTENSION_CONNECTOR_PRESENT, .label = "Extension Connector Present", .content = Enumeration{enumYesNo}, .access = readOnly, .paramClass = 1},
    {.id = FG_ALTERNATIVE_BOARD_DETECTION, .label = "Alternative Board Detection", .content = Enumeration{enumOnOff}, .access = readOnly, .paramClass = 1},
    {.id = FG_SYSTEMMONITOR_FPGA_DNA, .label = "FPGA DNA", .content = UInt64{0, 144115188075855871, 0}, .access = readOnly, .paramClass = 1},
    {.label = "Debug", .content = Group{.depth = 1}},
    {.id = FG_DEBUGSOURCE, .label = "Debug Source", .content = UInt{0, 10, 1}, .access = anyTime, .paramClass = 2},
    {.id = FG_DEBUGSOURCENAME, .label = "Debug Source Name", .content = Text{""}, .access = readOnly, .paramClass = 1},
    {.id = FG_DEBUGSAVECONFIG, .label = "Debug Save Config", .content = Text{"*.mcf"}, .access = anyTime, .paramClass = 1},
    {.id = FG_DEBUG_VERSION, .label = "Version", .content = Text{""}, .access = readOnly, .paramClass = 1},
    {.label = "Input", .content = Group{.depth = 2}},
    {.id = FG_DEBUGINENABLE, .label = "Debug Input Mode", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1},
    {.id = FG_DEBUGFILE, .label = "Debug File", .content = Text{""}, .access = anyTime, .paramClass = 1},
    {.id = FG_DEBUGINSERT, .label = "Debug Insert Image", .content = Enumeration{enumApply}, .access = anyTime, .paramClass = 1},
    {.id = FG_DEBUGWRITEPIXEL, .label = "Debug Write Pixel", .content = UInt64{0, 144115188075855871, 1}, .access = anyTime, .paramClass = 2},
    {.id = FG_DEBUGWRITEFLAG, .label = "Debug Write Flag", .content = Enumeration{enumDebugWriteFlag}, .access = anyTime, .paramClass = 1},
    {.id = FG_DEBUGREADY, .label = "Debug Write Ready", .content = Enumeration{enumYesNo}, .access = readOnly, .paramClass = 1},
    {.label = "Output", .content = Group{.depth = 2}},
    {.id = FG_DEBUGOUTENABLE, .label = "Debug Output Mode", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1},
    {.id = FG_DEBUGOUTXPOS, .label = "Debug Output XPosition", .content = UInt{4, 16384, 1}, .access = readOnly, .paramClass = 1, .unit = "pixel"},
    {.id = FG_DEBUGOUTYPOS, .label = "Debug Output YPosition", .content = UInt{1, 1398101, 1}, .access = readOnly, .paramClass = 1, .unit = "pixel"},
    {.id = FG_DEBUGOUTPIXEL, .label = "Debug Output Pixel", .content = UInt{0, 4294967295, 1}, .access = readOnly, .paramClass = 2, .unit = "pixel"},
};
// clang-format on

/** The published limits of a parameter that is known at compile time. */
template <typename Limits> consteval Limits limitsOf(int id) {
    const TreeRow* row = parameterTree;
    while (row->id != id)
        ++row;
    return std::get<Limits>(row->content);
}

} // namespace catalogue

#endif
