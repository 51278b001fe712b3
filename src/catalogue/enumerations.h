/**
 * The enumerations of the parameters: accepted by the setters, published in the tree and resolved by name
 * queries of the applet. Rows are in the published order, which is not the order of the values.
 */
#ifndef CATALOGUE_ENUMERATIONS_H
#define CATALOGUE_ENUMERATIONS_H

#include "vexo/fg_parameters.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace catalogue {

/** One value of an enumeration. The tree takes label, value and symbolic name; the texts stay here. */
struct EnumEntry {
    const char* label;
    std::int32_t value;
    const char* symbolicName;
    const char* description = nullptr;
    const char* toolTip = nullptr;
    const char* genICamName = nullptr;
};

using EnumTable = std::span<const EnumEntry>;

/** True when `value`, as a signed or unsigned 32-bit word, is in the table. */
constexpr bool contains(EnumTable table, std::uint32_t value) {
    for (const EnumEntry& entry : table)
        if (static_cast<std::uint32_t>(entry.value) == value) return true;
    return false;
}

/** The rows of several tables, concatenated. */
template <std::size_t... sizes> consteval auto joined(const std::array<EnumEntry, sizes>&... tables) {
    std::array<EnumEntry, (sizes + ...)> all{};
    std::size_t next = 0;
    const auto append = [&](const auto& table) {
        for (const EnumEntry& entry : table)
            all[next++] = entry;
    };
    (append(tables), ...);
    return all;
}

// One row, one line.
// clang-format off
inline constexpr std::array enumYesNo{
    EnumEntry{.label = "Yes", .value = FG_YES, .symbolicName = "FG_YES", .description = "Yes", .genICamName = "Yes"},
    EnumEntry{.label = "No", .value = FG_NO, .symbolicName = "FG_NO", .description = "No", .genICamName = "No"},
};

inline constexpr std::array enumOnOff{
    EnumEntry{.label = "On", .value = FG_ON, .symbolicName = "FG_ON", .description = "On", .genICamName = "On"},
    EnumEntry{.label = "Off", .value = FG_OFF, .symbolicName = "FG_OFF", .description = "Off", .genICamName = "Off"},
};

inline constexpr std::array enumApply{
    EnumEntry{.label = "Apply", .value = FG_APPLY, .symbolicName = "FG_APPLY", .description = "Execute this action", .genICamName = "Apply"},
};

inline constexpr std::array enumDebugWriteFlag{
    EnumEntry{.label = "EndOfLine", .value = FG_ENDOFLINE, .symbolicName = "FG_ENDOFLINE", .description = "End of line", .genICamName = "EndOfLine"},
    EnumEntry{.label = "EndOfFrame", .value = FG_ENDOFFRAME, .symbolicName = "FG_ENDOFFRAME", .description = "End of frame", .genICamName = "EndOfFrame"},
};

inline constexpr std::array enumPixelFormat{
    EnumEntry{.label = "RGB 8bit", .value = RGB8, .symbolicName = "RGB8", .description = "The pixel output format is set to RGB8.", .genICamName = "RGB8"},
    EnumEntry{.label = "RGB 10bit", .value = RGB10, .symbolicName = "RGB10", .description = "The pixel output format is set to RGB10p.", .genICamName = "RGB10p"},
    EnumEntry{.label = "RGB 12bit", .value = RGB12, .symbolicName = "RGB12", .description = "The pixel output format is set to RGB12p.", .genICamName = "RGB12p"},
    EnumEntry{.label = "RGB 14bit", .value = RGB14, .symbolicName = "RGB14", .description = "The pixel output format is set to RGB14p.", .genICamName = "RGB14p"},
    EnumEntry{.label = "RGB 16bit", .value = RGB16, .symbolicName = "RGB16", .description = "The pixel output format is set to RGB16.", .genICamName = "RGB16"},
};

inline constexpr std::array enumLineOrder{
    EnumEntry{.label = "RGB", .value = FG_LINEORDER_RGB, .symbolicName = "FG_LINEORDER_RGB"},
    EnumEntry{.label = "BGR", .value = FG_LINEORDER_BGR, .symbolicName = "FG_LINEORDER_BGR"},
    EnumEntry{.label = "RBG", .value = FG_LINEORDER_RBG, .symbolicName = "FG_LINEORDER_RBG"},
    EnumEntry{.label = "BRG", .value = FG_LINEORDER_BRG, .symbolicName = "FG_LINEORDER_BRG"},
    EnumEntry{.label = "GBR", .value = FG_LINEORDER_GBR, .symbolicName = "FG_LINEORDER_GBR"},
    EnumEntry{.label = "GRB", .value = FG_LINEORDER_GRB, .symbolicName = "FG_LINEORDER_GRB"},
};

inline constexpr std::array enumVantagePoint{
    EnumEntry{.label = "Top-Left", .value = FG_VANTAGEPOINT_TOP_LEFT, .symbolicName = "FG_VANTAGEPOINT_TOP_LEFT", .description = "Starting point of the image is the top left corner.", .genICamName = "TopLeft"},
    EnumEntry{.label = "Top-Right", .value = FG_VANTAGEPOINT_TOP_RIGHT, .symbolicName = "FG_VANTAGEPOINT_TOP_RIGHT", .description = "Starting point of the image is the top right corner.", .genICamName = "TopRight"},
    EnumEntry{.label = "Bottom-Left", .value = FG_VANTAGEPOINT_BOTTOM_LEFT, .symbolicName = "FG_VANTAGEPOINT_BOTTOM_LEFT", .description = "Starting point of the image is the bottom left corner.", .genICamName = "BottomLeft"},
    EnumEntry{.label = "Bottom-Right", .value = FG_VANTAGEPOINT_BOTTOM_RIGHT, .symbolicName = "FG_VANTAGEPOINT_BOTTOM_RIGHT", .description = "Starting point of the image is the bottom right corner.", .genICamName = "BottomRight"},
};

inline constexpr std::array enumOutputFormat{
    EnumEntry{.label = "Color 24bit", .value = FG_COL24, .symbolicName = "FG_COL24", .description = "The pixel output format is set to BGR8.", .genICamName = "BGR8"},
    EnumEntry{.label = "Color 30bit", .value = FG_COL30, .symbolicName = "FG_COL30", .description = "The pixel output format is set to BGR10p.", .genICamName = "BGR10p"},
    EnumEntry{.label = "Color 36bit", .value = FG_COL36, .symbolicName = "FG_COL36", .description = "The pixel output format is set to BGR12p.", .genICamName = "BGR12p"},
    EnumEntry{.label = "Color 42bit", .value = FG_COL42, .symbolicName = "FG_COL42", .description = "The pixel output format is set to BGR14p.", .genICamName = "BGR14p"},
    EnumEntry{.label = "Color 48bit", .value = FG_COL48, .symbolicName = "FG_COL48", .description = "The pixel output format is set to BGR16.", .genICamName = "BGR16"},
};

inline constexpr std::array enumBitAlignment{
    EnumEntry{.label = "Left Aligned", .value = FG_LEFT_ALIGNED, .symbolicName = "FG_LEFT_ALIGNED", .description = "Output pixel are left aligned", .genICamName = "LeftAligned"},
    EnumEntry{.label = "Right Aligned", .value = FG_RIGHT_ALIGNED, .symbolicName = "FG_RIGHT_ALIGNED", .description = "Output pixel are right aligned", .genICamName = "RightAligned"},
    EnumEntry{.label = "Custom Bit Shift", .value = FG_CUSTOM_BIT_SHIFT_MODE, .symbolicName = "FG_CUSTOM_BIT_SHIFT_MODE", .description = "Output pixel are shifted in a way defined by the user", .genICamName = "CustomBitShift"},
};

inline constexpr std::array enumSimulatorSource{
    EnumEntry{.label = "Camera", .value = FG_CAMPORT, .symbolicName = "FG_CAMPORT", .description = "Image Source is the camera", .genICamName = "SourceCamera"},
    EnumEntry{.label = "Simulator", .value = FG_CAMERASIMULATOR, .symbolicName = "FG_CAMERASIMULATOR", .description = "image source is the simulator build in into the applet", .genICamName = "SourceSimulator"},
};

inline constexpr std::array enumSimulatorPattern{
    EnumEntry{.label = "Horizontal", .value = FG_HORIZONTAL, .symbolicName = "FG_HORIZONTAL", .description = "Testpatter: horizontal lines", .genICamName = "PatternHorizontal"},
    EnumEntry{.label = "Vertical", .value = FG_VERTICAL, .symbolicName = "FG_VERTICAL", .description = "Testpattern: vertical lines", .genICamName = "PatternVertical"},
    EnumEntry{.label = "Diagonal", .value = FG_DIAGONAL, .symbolicName = "FG_DIAGONAL", .description = "Testpattern: diagonal lines", .genICamName = "PatternDiagonal"},
};

inline constexpr std::array enumSimulatorSpeedMode{
    EnumEntry{.label = "Pixel Frequency", .value = FG_PIXEL_FREQUENCY, .symbolicName = "FG_PIXEL_FREQUENCY", .description = "Pixel frequency mode of the simulator", .genICamName = "PixelFrequency"},
    EnumEntry{.label = "Line Rate", .value = FG_LINERATE, .symbolicName = "FG_LINERATE", .description = "Line rate mode of the simulator", .genICamName = "LineRate"},
    EnumEntry{.label = "Frame Rate", .value = FG_FRAMERATE, .symbolicName = "FG_FRAMERATE", .description = "Frame rate mode of the simulator", .genICamName = "FrameRate"},
};

inline constexpr std::array enumSimulatorTriggerMode{
    EnumEntry{.label = "Free Run", .value = SIMULATION_FREE_RUN, .symbolicName = "SIMULATION_FREE_RUN", .description = "Set simulation to free run mode", .genICamName = "FreeRunMode"},
    EnumEntry{.label = "Rising Edge Triggers Line", .value = RISING_EDGE_TRIGGERS_LINE, .symbolicName = "RISING_EDGE_TRIGGERS_LINE", .description = "Trigger a line for each rising edge", .genICamName = "LineTrgMode"},
    EnumEntry{.label = "Rising Edge Triggers Frame", .value = RISING_EDGE_TRIGGERS_FRAME, .symbolicName = "RISING_EDGE_TRIGGERS_FRAME", .description = "Trigger a frame for ech rising edge", .genICamName = "FrameTrgMode"},
};

inline constexpr std::array enumLutType{
    EnumEntry{.label = "Processor", .value = LUT_TYPE_PROCESSING, .symbolicName = "LUT_TYPE_PROCESSING"},
    EnumEntry{.label = "User file", .value = LUT_TYPE_CUSTOM, .symbolicName = "LUT_TYPE_CUSTOM", .description = "Use a user file to configure the value.", .genICamName = "UserFile"},
};

inline constexpr std::array enumLutImplementation{
    EnumEntry{.label = "Full LUT", .value = LUT_IMPLEMENTATION_FULL_LUT, .symbolicName = "LUT_IMPLEMENTATION_FULL_LUT", .description = "Defines 1 value for each possible pixel value.", .genICamName = "FullLUT"},
    EnumEntry{.label = "KneeLUT", .value = LUT_IMPLEMENTATION_KNEELUT, .symbolicName = "LUT_IMPLEMENTATION_KNEELUT", .description = "Uses an interpolation for pixel values based one a set of defined values.", .genICamName = "KneeLUT"},
};

inline constexpr std::array enumLineTriggerMode{
    EnumEntry{.label = "Grabber controlled", .value = GRABBER_CONTROLLED, .symbolicName = "GRABBER_CONTROLLED"},
    EnumEntry{.label = "Async External Trigger", .value = ASYNC_TRIGGER, .symbolicName = "ASYNC_TRIGGER"},
    EnumEntry{.label = "Gated, Grabber controlled", .value = GRABBER_CONTROLLED_GATED, .symbolicName = "GRABBER_CONTROLLED_GATED"},
    EnumEntry{.label = "Gated, External Triggered", .value = ASYNC_GATED, .symbolicName = "ASYNC_GATED"},
};

inline constexpr std::array enumTriggerInSource{
    EnumEntry{.label = "GPI Trigger Source 0", .value = TRGINSRC_GPI_0, .symbolicName = "TRGINSRC_GPI_0", .description = "GPI Trigger Source 0", .genICamName = "GPITriggerSource0"},
    EnumEntry{.label = "GPI Trigger Source 1", .value = TRGINSRC_GPI_1, .symbolicName = "TRGINSRC_GPI_1", .description = "GPI Trigger Source 1", .genICamName = "GPITriggerSource1"},
    EnumEntry{.label = "GPI Trigger Source 2", .value = TRGINSRC_GPI_2, .symbolicName = "TRGINSRC_GPI_2", .description = "GPI Trigger Source 2", .genICamName = "GPITriggerSource2"},
    EnumEntry{.label = "GPI Trigger Source 3", .value = TRGINSRC_GPI_3, .symbolicName = "TRGINSRC_GPI_3", .description = "GPI Trigger Source 3", .genICamName = "GPITriggerSource3"},
    EnumEntry{.label = "GPI Trigger Source 4 (not available on Skyrail)", .value = TRGINSRC_GPI_4, .symbolicName = "TRGINSRC_GPI_4", .description = "GPI Trigger Source 4", .genICamName = "GPITriggerSource4"},
    EnumEntry{.label = "GPI Trigger Source 5 (not available on Skyrail)", .value = TRGINSRC_GPI_5, .symbolicName = "TRGINSRC_GPI_5", .description = "GPI Trigger Source 5", .genICamName = "GPITriggerSource5"},
    EnumEntry{.label = "GPI Trigger Source 6 (not available on Skyrail)", .value = TRGINSRC_GPI_6, .symbolicName = "TRGINSRC_GPI_6", .description = "GPI Trigger Source 6", .genICamName = "GPITriggerSource6"},
    EnumEntry{.label = "GPI Trigger Source 7 (not available on Skyrail)", .value = TRGINSRC_GPI_7, .symbolicName = "TRGINSRC_GPI_7", .description = "GPI Trigger Source 7", .genICamName = "GPITriggerSource7"},
    EnumEntry{.label = "Front GPI Trigger Source 0", .value = TRGINSRC_FRONT_GPI_0, .symbolicName = "TRGINSRC_FRONT_GPI_0", .description = "The input source of the trigger statistics is set to Front GPI Trigger Source 0.", .genICamName = "TriggerInSourceFrontGPI0"},
    EnumEntry{.label = "Front GPI Trigger Source 1", .value = TRGINSRC_FRONT_GPI_1, .symbolicName = "TRGINSRC_FRONT_GPI_1", .description = "The input source of the trigger statistics is set to Front GPI Trigger Source 1.", .genICamName = "TriggerInSourceFrontGPI1"},
    EnumEntry{.label = "Front GPI Trigger Source 2", .value = TRGINSRC_FRONT_GPI_2, .symbolicName = "TRGINSRC_FRONT_GPI_2", .description = "The input source of the trigger statistics is set to Front GPI Trigger Source 2.", .genICamName = "TriggerInSourceFrontGPI2"},
    EnumEntry{.label = "Front GPI Trigger Source 3", .value = TRGINSRC_FRONT_GPI_3, .symbolicName = "TRGINSRC_FRONT_GPI_3", .description = "The input source of the trigger statistics is set to Front GPI Trigger Source 3.", .genICamName = "TriggerInSourceFrontGPI3"},
};

inline constexpr std::array enumTriggerInPolarity{
    EnumEntry{.label = "Low Active", .value = HIGH_ON_ZERO_LOW, .symbolicName = "HIGH_ON_ZERO_LOW"},
    EnumEntry{.label = "High Active", .value = HIGH_ON_ZERO_HIGH, .symbolicName = "HIGH_ON_ZERO_HIGH"},
};

inline constexpr std::array enumShaftEncoderMode{
    EnumEntry{.label = "Filter x1", .value = FILTER_X1, .symbolicName = "FILTER_X1"},
    EnumEntry{.label = "Filter x2", .value = FILTER_X2, .symbolicName = "FILTER_X2"},
    EnumEntry{.label = "Filter x4", .value = FILTER_X4, .symbolicName = "FILTER_X4"},
};

inline constexpr std::array enumShaftEncoderLeading{
    EnumEntry{.label = "Source A", .value = SOURCE_A, .symbolicName = "SOURCE_A"},
    EnumEntry{.label = "Source B", .value = SOURCE_B, .symbolicName = "SOURCE_B"},
};

inline constexpr std::array enumPolarity{
    EnumEntry{.label = "Low Active", .value = FG_LOW, .symbolicName = "FG_LOW"},
    EnumEntry{.label = "High Active", .value = FG_HIGH, .symbolicName = "FG_HIGH"},
};

inline constexpr std::array enumImageTriggerMode{
    EnumEntry{.label = "Free Run", .value = FREE_RUN, .symbolicName = "FREE_RUN"},
    EnumEntry{.label = "Async External Trigger", .value = ASYNC_TRIGGER, .symbolicName = "ASYNC_TRIGGER"},
    EnumEntry{.label = "Async Multi Buffer External Trigger", .value = ASYNC_TRIGGER_MULTIFRAME, .symbolicName = "ASYNC_TRIGGER_MULTIFRAME"},
    EnumEntry{.label = "Gated, External Triggered", .value = ASYNC_GATED, .symbolicName = "ASYNC_GATED"},
    EnumEntry{.label = "Gated Multi Buffer, External Triggered", .value = ASYNC_GATED_MULTIFRAME, .symbolicName = "ASYNC_GATED_MULTIFRAME"},
};

inline constexpr std::array enumBusy{
    EnumEntry{.label = "Busy Flag is set", .value = IS_BUSY, .symbolicName = "IS_BUSY", .description = "Busy Flag is set", .genICamName = "Busy"},
    EnumEntry{.label = "Busy Flag is not set", .value = IS_NOT_BUSY, .symbolicName = "IS_NOT_BUSY", .description = "Busy Flag is not set", .genICamName = "NotBusy"},
};

inline constexpr std::array softwareTrigger{
    EnumEntry{.label = "Software Trigger", .value = TRGINSOFTWARE, .symbolicName = "TRGINSOFTWARE"},
};

inline constexpr auto enumImageTriggerInSource = joined(enumTriggerInSource, softwareTrigger);

inline constexpr std::array cameraSignals{
    EnumEntry{.label = "Gnd", .value = GND, .symbolicName = "GND", .description = "A static zero", .genICamName = "GND"},
    EnumEntry{.label = "Vcc", .value = VCC, .symbolicName = "VCC", .description = "A static one", .genICamName = "VCC"},
    EnumEntry{.label = "Cam0 Exsync", .value = FG_SIGNAL_CAM0_EXSYNC, .symbolicName = "FG_SIGNAL_CAM0_EXSYNC", .description = "Select the exsync Signal as input", .genICamName = "SignalExsync"},
    EnumEntry{.label = "Cam0 Exsync2", .value = FG_SIGNAL_CAM0_EXSYNC2, .symbolicName = "FG_SIGNAL_CAM0_EXSYNC2", .description = "Select the exsync2 signal as input", .genICamName = "SignalExsync2"},
    EnumEntry{.label = "Cam0 Flash", .value = FG_SIGNAL_CAM0_FLASH, .symbolicName = "FG_SIGNAL_CAM0_FLASH", .description = "Select the flash signal as input", .genICamName = "SignalFlash"},
    EnumEntry{.label = "Cam0 LVAL", .value = FG_SIGNAL_CAM0_LVAL, .symbolicName = "FG_SIGNAL_CAM0_LVAL", .description = "Select the line valid signal as input", .genICamName = "SignalLineValid"},
    EnumEntry{.label = "Cam0 FVAL", .value = FG_SIGNAL_CAM0_FVAL, .symbolicName = "FG_SIGNAL_CAM0_FVAL", .description = "Select the frame valid signal as input", .genICamName = "SignalFrameValid"},
};

inline constexpr std::array transferSignals{
    EnumEntry{.label = "Cam0 Line Transfer Start", .value = FG_SIGNAL_CAM0_LINE_START, .symbolicName = "FG_SIGNAL_CAM0_LINE_START", .description = "Select the line start signal as input", .genICamName = "SignalLineStart"},
    EnumEntry{.label = "Cam0 Line Transfer End", .value = FG_SIGNAL_CAM0_LINE_END, .symbolicName = "FG_SIGNAL_CAM0_LINE_END", .description = "Select the line end signal as input", .genICamName = "SignalLineEnd"},
    EnumEntry{.label = "Cam0 Frame Transfer Start", .value = FG_SIGNAL_CAM0_FRAME_START, .symbolicName = "FG_SIGNAL_CAM0_FRAME_START", .description = "Select the frame start signal as input", .genICamName = "SignalFrameStart"},
    EnumEntry{.label = "Cam0 Frame Transfer End", .value = FG_SIGNAL_CAM0_FRAME_END, .symbolicName = "FG_SIGNAL_CAM0_FRAME_END", .description = "Select the frame end signal as input", .genICamName = "SignalFrameEnd"},
};

inline constexpr std::array inputSignals{
    EnumEntry{.label = "GPI 0", .value = FG_SIGNAL_GPI_0, .symbolicName = "FG_SIGNAL_GPI_0"},
    EnumEntry{.label = "GPI 1", .value = FG_SIGNAL_GPI_1, .symbolicName = "FG_SIGNAL_GPI_1"},
    EnumEntry{.label = "GPI 2", .value = FG_SIGNAL_GPI_2, .symbolicName = "FG_SIGNAL_GPI_2"},
    EnumEntry{.label = "GPI 3", .value = FG_SIGNAL_GPI_3, .symbolicName = "FG_SIGNAL_GPI_3"},
    EnumEntry{.label = "GPI 4", .value = FG_SIGNAL_GPI_4, .symbolicName = "FG_SIGNAL_GPI_4"},
    EnumEntry{.label = "GPI 5", .value = FG_SIGNAL_GPI_5, .symbolicName = "FG_SIGNAL_GPI_5"},
    EnumEntry{.label = "GPI 6", .value = FG_SIGNAL_GPI_6, .symbolicName = "FG_SIGNAL_GPI_6"},
    EnumEntry{.label = "GPI 7", .value = FG_SIGNAL_GPI_7, .symbolicName = "FG_SIGNAL_GPI_7"},
    EnumEntry{.label = "Front GPI 0", .value = FG_SIGNAL_FRONT_GPI_0, .symbolicName = "FG_SIGNAL_FRONT_GPI_0", .description = "Select the front GPI0 signal as input", .genICamName = "SignalFrontGPI0"},
    EnumEntry{.label = "Front GPI 1", .value = FG_SIGNAL_FRONT_GPI_1, .symbolicName = "FG_SIGNAL_FRONT_GPI_1", .description = "Select the front GPI1 signal as input", .genICamName = "SignalFrontGPI1"},
    EnumEntry{.label = "Front GPI 2", .value = FG_SIGNAL_FRONT_GPI_2, .symbolicName = "FG_SIGNAL_FRONT_GPI_2"},
    EnumEntry{.label = "Front GPI 3", .value = FG_SIGNAL_FRONT_GPI_3, .symbolicName = "FG_SIGNAL_FRONT_GPI_3"},
};

inline constexpr auto enumSignalSource = joined(cameraSignals, inputSignals);

/** For the analyzers and the custom events, which also accept the transfer signals. */
inline constexpr auto enumSignalSourceExtended = joined(cameraSignals, transferSignals, inputSignals);

inline constexpr std::array enumPulseMessage{
    EnumEntry{.label = "Pulse Immediate", .value = FG_PULSE_IMMEDIATE, .symbolicName = "FG_PULSE_IMMEDIATE"},
    EnumEntry{.label = "Pulse Width", .value = FG_PULSE_WIDTH, .symbolicName = "FG_PULSE_WIDTH"},
};

// clang-format on

/** Every enumeration. A symbolic name that is in several has the same value in all of them. */
inline constexpr EnumTable allEnumerations[] = {
    enumYesNo,
    enumOnOff,
    enumApply,
    enumDebugWriteFlag,
    enumPixelFormat,
    enumLineOrder,
    enumVantagePoint,
    enumOutputFormat,
    enumBitAlignment,
    enumSimulatorSource,
    enumSimulatorPattern,
    enumSimulatorSpeedMode,
    enumSimulatorTriggerMode,
    enumLutType,
    enumLutImplementation,
    enumLineTriggerMode,
    enumTriggerInSource,
    enumTriggerInPolarity,
    enumShaftEncoderMode,
    enumShaftEncoderLeading,
    enumPolarity,
    enumImageTriggerMode,
    enumBusy,
    enumImageTriggerInSource,
    enumSignalSource,
    enumSignalSourceExtended,
    enumPulseMessage,
};

} // namespace catalogue

#endif
