/**
 * The published tree, one row for each group and each parameter, in reading order.
 *
 * A group belongs to the last group before it that is one level higher. A parameter belongs to the last group
 * before it. In the tree itself a group's sub-groups come before its own parameters.
 */
#ifndef CATALOGUE_PARAMETER_TREE_H
#define CATALOGUE_PARAMETER_TREE_H

#include "catalogue/enumerations.h"
#include "catalogue/lut_size.h"
#include "vexo/register_info.h"

#include <cstdint>
#include <variant>

namespace catalogue {

/** The access rights of a parameter, as in RegisterInfo::access. */
enum Access : int {
    readOnly = REGISTER_ACCESS_READ,
    betweenAcquisitions = readOnly | REGISTER_ACCESS_WRITE,
    anyTime = betweenAcquisitions | REGISTER_ACCESS_WRITE_WHILE_ACQUIRING,
};

/** Limits of a number. Some are empty (0 to 0), and some are overwritten at bring-up. */
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
    const char* text = ""; // description
};

/** The micro sign in ISO 8859-1, one byte. */
inline constexpr const char* microseconds = "\xB5"
                                            "s";

inline constexpr const char* internalUse = "Debug-Interface, Internal Use ONLY.";

// Size of the largest image.
inline constexpr std::uint32_t sensorPixels = 16384;         // of a line
inline constexpr std::uint32_t sensorLines = (1u << 22) / 3; // of a frame

// Size of the camera simulator's counters, gaps included.
inline constexpr std::uint32_t simulatorPixels = 294920; // of a line
inline constexpr std::uint32_t simulatorLines = 65536;   // of a frame

// One row, one line for what it is and one for its description. The descriptions are content: repetitions, module
// numbers and blanks at the end stay as they are.
// clang-format off
inline constexpr TreeRow parameterTree[] = {
    {.label = "Camera Link HS", .content = Group{.depth = 0}},
    {.id = FG_PIXELFORMAT, .label = "Pixel Format", .content = Enumeration{enumPixelFormat}, .access = anyTime, .paramClass = 1,
     .text = "Camera pixel format acording to Pixel Format Naming Convention (PFMC)."},
    {.id = FG_LINEORDER, .label = "Line order", .content = Enumeration{enumLineOrder}, .access = anyTime, .paramClass = 1,
     .text = "Order of lines of type R, G and B"},
    {.label = "Pulse Message Trigger Mapping", .content = Group{.depth = 1}},
    {.id = FG_CLHS_TRIGGER_PULSE_MESSAGE, .label = "CLHS Pulse Message", .content = Enumeration{enumPulseMessage}, .access = anyTime, .paramClass = 1,
     .text = "Set the CLHS Pulse Message."},
    {.label = "Sensor Geometry", .content = Group{.depth = 0}},
    {.id = FG_VANTAGEPOINT, .label = "Vantage Point", .content = Enumeration{enumVantagePoint}, .access = betweenAcquisitions, .paramClass = 1,
     .text = "Vantage point. Use for mirroring. If VantagePoint is set to TopRight or BottomRight Width + XOffset must be smaller than SensorWidth. If VantagePoint is set to BottomLeft or BottomRight the Height + YOffset must be smaller than SensorHeight."},
    {.id = FG_SENSORWIDTH, .label = "Sensor Width", .content = UInt{4, sensorPixels, 4}, .access = betweenAcquisitions, .paramClass = 2, .unit = "pixel",
     .text = "Sensor width in selected tap geometry. Value is ignored if vantage point = Top-Left. Available DRAM and SensorHeight limit the maximum SensorWidth."},
    {.id = FG_SENSORHEIGHT, .label = "Sensor Height", .content = UInt{1, sensorLines, 1}, .access = betweenAcquisitions, .paramClass = 2, .unit = "pixel",
     .text = "Sensor Height in selected tap geometry. Value is ignored if vantage point = TopLeft. Available DRAM and SensorWidth limit the maximum SensorHeight."},
    {.label = "ROI", .content = Group{.depth = 0}},
    {.id = FG_WIDTH, .label = "Width", .content = UInt{4, sensorPixels, 4}, .access = betweenAcquisitions, .paramClass = 2, .unit = "pixel",
     .text = "Image width of the acquisition ROI independent of the camera ROI."},
    {.id = FG_HEIGHT, .label = "Height", .content = UInt{1, sensorLines, 1}, .access = betweenAcquisitions, .paramClass = 2, .unit = "pixel",
     .text = "Image width of the acquisition ROI independent of the camera ROI."},
    {.id = FG_XOFFSET, .label = "XOffset", .content = UInt{0, sensorPixels - 4, 4}, .access = betweenAcquisitions, .paramClass = 2, .unit = "pixel",
     .text = "X-offset of the acquisition ROI independent of the camera ROI."},
    {.id = FG_YOFFSET, .label = "YOffset", .content = UInt{0, sensorLines - 1, 1}, .access = betweenAcquisitions, .paramClass = 2, .unit = "pixel",
     .text = "Y-offset of the acquisition ROI independent of the camera ROI."},
    {.label = "Digital I/O", .content = Group{.depth = 0}},
    {.label = "Camera", .content = Group{.depth = 1}},
    {.id = FG_TRIGGERCAMERA_SOURCE, .label = "Camera Trigger Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1,
     .text = "Select the camera trigger source signal."},
    {.id = FG_TRIGGERCAMERA_POLARITY, .label = "Camera Trigger Output Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "Camera trigger signal polarity"},
    {.label = "GPO", .content = Group{.depth = 1}},
    {.id = FG_TRIGGEROUT_GPO_0_SOURCE, .label = "GPO 0 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal source for GPO 0 output"},
    {.id = FG_TRIGGEROUT_GPO_0_POLARITY, .label = "GPO 0 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "GPO 0 signal polarity. Ignored if source is VCC or GND."},
    {.id = FG_TRIGGEROUT_GPO_1_SOURCE, .label = "GPO 1 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal source for GPO 1 output"},
    {.id = FG_TRIGGEROUT_GPO_1_POLARITY, .label = "GPO 1 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "GPO 1 signal polarity. Ignored if source is VCC or GND."},
    {.id = FG_TRIGGEROUT_GPO_2_SOURCE, .label = "GPO 2 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal source for GPO 2 output"},
    {.id = FG_TRIGGEROUT_GPO_2_POLARITY, .label = "GPO 2 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "GPO 2 signal polarity. Ignored if source is VCC or GND."},
    {.id = FG_TRIGGEROUT_GPO_3_SOURCE, .label = "GPO 3 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal source for GPO 3 output"},
    {.id = FG_TRIGGEROUT_GPO_3_POLARITY, .label = "GPO 3 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "GPO 3 signal polarity. Ignored if source is VCC or GND."},
    {.id = FG_TRIGGEROUT_GPO_4_SOURCE, .label = "GPO 4 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal source for GPO 4 output"},
    {.id = FG_TRIGGEROUT_GPO_4_POLARITY, .label = "GPO 4 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "GPO 4 signal polarity. Ignored if source is VCC or GND."},
    {.id = FG_TRIGGEROUT_GPO_5_SOURCE, .label = "GPO 5 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal source for GPO 5 output"},
    {.id = FG_TRIGGEROUT_GPO_5_POLARITY, .label = "GPO 5 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "GPO 5 signal polarity. Ignored if source is VCC or GND."},
    {.id = FG_TRIGGEROUT_GPO_6_SOURCE, .label = "GPO 6 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal source for GPO 6 output"},
    {.id = FG_TRIGGEROUT_GPO_6_POLARITY, .label = "GPO 6 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "GPO 6 signal polarity. Ignored if source is VCC or GND."},
    {.id = FG_TRIGGEROUT_GPO_7_SOURCE, .label = "GPO 7 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal source for GPO 7 output"},
    {.id = FG_TRIGGEROUT_GPO_7_POLARITY, .label = "GPO 7 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "GPO 7 signal polarity. Ignored if source is VCC or GND."},
    {.id = FG_TRIGGEROUT_FRONT_GPO_0_SOURCE, .label = "Front GPO 0 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal source for front GPO 0 output"},
    {.id = FG_TRIGGEROUT_FRONT_GPO_0_POLARITY, .label = "Front GPO 0 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "Front GPO 0 signal polarity. Ignored if source is VCC or GND."},
    {.id = FG_TRIGGEROUT_FRONT_GPO_1_SOURCE, .label = "Front GPO 1 Source", .content = Enumeration{enumSignalSource}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal source for front GPO 1 output"},
    {.id = FG_TRIGGEROUT_FRONT_GPO_1_POLARITY, .label = "Front GPO 1 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "Front GPO 1 signal polarity. Ignored if source is VCC or GND."},
    {.id = FG_DIGIO_OUTPUT, .label = "Legacy Digital Output", .content = Int{-1, 3, 1}, .access = anyTime, .paramClass = 1,
     .text = "Set the output values on output number 3 and 7. This is a 2 bit value. One bit for each output. Bit 0 of the parameter refers to the value at output 3, while bit 1 refers to output 7. The parameter will overwrite parameters FG_TRIGGEROUT_GPO_0_SOURCE and FG_TRIGGEROUT_GPO_7_SOURCE. If these parameters are not set to VCC or GND this parameter will return value -1 as it cannot represent the value as a bitmask."},
    {.label = "GPI", .content = Group{.depth = 1}},
    {.id = FG_DIGIO_INPUT, .label = "Digital Input", .content = UInt{0, 4095, 1}, .access = readOnly, .paramClass = 1,
     .text = "Read the current state of all digital inputs. You can read the current state of these inputs using this parameter. LSB Bit 0 of the read value represents input 0, bit 1 represents input 1 and so on. Bits 0 to 7 use GPI 0 to 7. Front GPI 0 to 3 are represented by bits 8 to 11."},
    {.label = "Event Source", .content = Group{.depth = 1}},
    {.id = FG_CUSTOM_SIGNAL_EVENT_0_SOURCE, .label = "Custom Signal Event 0 Source", .content = Enumeration{enumSignalSourceExtended}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal source for the custom signal event 0."},
    {.id = FG_CUSTOM_SIGNAL_EVENT_0_POLARITY, .label = "Custom Signal Event 0 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal polarity for the custom signal event 0"},
    {.id = FG_CUSTOM_SIGNAL_EVENT_1_SOURCE, .label = "Custom Signal Event 1 Source", .content = Enumeration{enumSignalSourceExtended}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal source for the custom signal event 1"},
    {.id = FG_CUSTOM_SIGNAL_EVENT_1_POLARITY, .label = "Custom Signal Event 1 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal polarity for the custom signal event 1"},
    {.label = "Line Trigger / ExSync", .content = Group{.depth = 0}},
    {.id = FG_LINETRIGGERMODE, .label = "Line Trigger Mode", .content = Enumeration{enumLineTriggerMode}, .access = betweenAcquisitions, .paramClass = 1,
     .text = "This parameter selects the operation mode for the Exsync signal generation. The source for the external trigger input can be selected via the parameters SourceA and SourceB. Grabber_Controlled: Exsync is generated periodically by the internal signal generator. ASync_Trigger: Each external trigger signal from a peripheral device is used to generate an ExSync based on the defined exposure time. Grabber_Controlled_Gated: Exsync is generated periodically by the internal signal generator during the acquisition of a frame. Extern_Trigger_Gated: An external trigger signal from a peripheral device is used to generate the ExSync during the acquisition of a frame only."},
    {.id = FG_EXSYNCON, .label = "Exsync Enable", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1,
     .text = "Enables or disables the ExSync output to the camera. Please make sure that the camera is expecting this signal and interprets it in the expected way. The polarity of this signal is relevant for proper functionality."},
    {.label = "Line Trigger Input", .content = Group{.depth = 1}},
    {.id = FG_LINETRIGGERINSRC, .label = "Source A", .content = Enumeration{enumTriggerInSource}, .access = anyTime, .paramClass = 1,
     .text = "Trigger input signal source for the ExSync generation. This signal is also interpreted as source A when using a shaft encoder. This is only relevant if the TriggerMode is set to ASync_Trigger."},
    {.id = FG_LINETRIGGERINPOLARITY, .label = "Input Polarity", .content = Enumeration{enumTriggerInPolarity}, .access = anyTime, .paramClass = 1,
     .text = "The parameter defines the polarity of the external input trigger signal encoder source A and source B. When set to LowActive, the Exsync generator starts on a falling edge of the signal specified by the parameter FG_IMGTRIGGERINSRC. Otherwise, the Exsync generation starts on a rising edge. This is only relevant if the TriggerMode is set to Extern_Trigger."},
    {.id = FG_LINETRIGGERDEBOUNCING, .label = "Debouncing Time", .content = Double{0.008, 65.0, 0.008}, .access = anyTime, .paramClass = 1, .unit = microseconds,
     .text = "This parameter specifies the debouncing time of the input line trigger, events, IO forwarwards and analyzers. Signals must keep the same state during the debounce time to be detected as such. Fast signal changes within the debounce time will be filtered out."},
    {.label = "Downscale", .content = Group{.depth = 2}},
    {.id = FG_LINE_DOWNSCALE, .label = "Downscale", .content = UInt{1, 255, 1}, .access = betweenAcquisitions, .paramClass = 1, .unit = "pulses",
     .text = "Downscale factor of the trigger input signal. Specifies the number of external input trigger signals, which are needed to generate a single Exsync. This is only relevant if the TriggerMode is set to an external ASync_trigger mode."},
    {.id = FG_LINE_DOWNSCALEINIT, .label = "Phase", .content = UInt{1, 255, 1}, .access = betweenAcquisitions, .paramClass = 1, .unit = "pulses",
     .text = "Phase of the downscaling with respect to the image gate. Specifies the number of external input trigger signals, which are needed to generate the first Exsync of a frame. This is only relevant if the TriggerMode is set to ASync_Trigger_Gated."},
    {.label = "Shaft Encoder A/B Filter", .content = Group{.depth = 1}},
    {.id = FG_SHAFTENCODERON, .label = "Enable", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1,
     .text = "Enable or disbale shaft encoder. Specifies whether a single trigger input (off = A only) is used for the Exsync generation, or the signals A and B (on)."},
    {.id = FG_SHAFTENCODERMODE, .label = "Shaft Encoder Mode", .content = Enumeration{enumShaftEncoderMode}, .access = anyTime, .paramClass = 1,
     .text = "Select the shaft encoder mode. Filter_x1: Exsync is generated for a forward rotation of the shaft encoder in single resolution, i.e., a trigger pulse for a rising edge of LineTrgInSourceA. Filter_x2: Exsync is generated for a forward rotation of the shaft encoder in double resolution, i.e., a trigger pulse for a rising edge of LineTrgInSourceA and a rising edge of LineTrgInSourceB. Filter_x4: Exsync is generated for a forward rotation of the shaft encoder in quad resolution, i.e., a trigger pulse for a rising and a falling edge of LineTrgInSourceA and a rising and a falling edge of LineTrgInSourceB."},
    {.id = FG_SHAFTENCODERINSRC, .label = "Source B", .content = Enumeration{enumTriggerInSource}, .access = anyTime, .paramClass = 1,
     .text = "Trigger input signal source for the ExSync generation. This signal is also interpreted as source B when using a shaft encoder. This is only relevant if the TriggerMode is set to ASync_Trigger."},
    {.id = FG_SHAFTENCODERLEADING, .label = "Leading Signal", .content = Enumeration{enumShaftEncoderLeading}, .access = anyTime, .paramClass = 1,
     .text = "Define the leading signal / direction for the shaft encoder. A foreward movement is defined by a rising edge of signal A before signal B if the parameter is set to Signal_AB. Source_A: Forward is defined by A before B. Source_B: Forward is defined by B before A."},
    {.id = FG_SHAFTENCODER_COMPENSATION_ENABLE, .label = "Compensation Enable", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1,
     .text = "Enables or disables the shaft encoder rollback compensation. Is relevant in case of a shaft encoder AB configuration. If switched to ON, in case of shaft encoder backward movement the operator counts how many shaft encoder steps the shaft encoder moves backwards. When the shaft encoder moves forwards again, this number of shaft encoder steps (now forward direction) is not transmitted as external trigger signals. Only after the transportation belt is back to the place where the backward movement started, the shaft encoder steps (forward direction) are transmitted as external trigger signals again. If switched to OFF, the operator simply doesn't transmit any trigger signals as long as the transportation belt moves backwards. As soon as the transport belt starts to move forwards again, the operator transmits the shaft encoder steps (forward direction) as trigger signals."},
    {.id = FG_SHAFTENCODER_COMPENSATION_COUNT, .label = "Compensation Count", .content = UInt{0, 1048575, 1}, .access = anyTime, .paramClass = 1, .unit = "pulses",
     .text = "Read or write the current compensation count. Value 0 refers to no compensation. You can reset the compensator by writing 0 to the parameter. Is based on a 20bit counter enabling a backward movement of up to 1048576 steps."},
    {.label = "ExSync Output", .content = Group{.depth = 1}},
    {.id = FG_LINEPERIODE, .label = "Period", .content = Double{0.512, 2097.144, 0.008}, .access = anyTime, .paramClass = 1, .unit = microseconds,
     .text = "Length of the ExSync period. It defines the line frequency when using the grabber controlled mode to send a trigger signal to the connected camera. Note that the value of the line period needs to be greater than the line delay."},
    {.id = FG_LINEEXPOSURE, .label = "Exposure Time", .content = Double{0.512, 1048.568, 0.008}, .access = anyTime, .paramClass = 2, .unit = microseconds,
     .text = "Length of the ExSync signal pulse. This parameter specifies the pulse width of the Exsync signal, which can be used by many cameras as externaly defined exposure time. By this it is possible to adjust the exposure time during runtime via software, even while grabbing."},
    {.id = FG_EXSYNCPOLARITY, .label = "Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "Polarity of the ExSync output signal. Adjusts the polarity of the Exsync signal genarator to the polarity accepted by the connected camera. Use LowActive, if the camera starts exposure on a falling edge, otherwise use HighActive."},
    {.id = FG_LINETRIGGERDELAY, .label = "Delay->Exsync", .content = Double{0.0, 1048.568, 0.008}, .access = anyTime, .paramClass = 2, .unit = microseconds,
     .text = "Delay of the ExSync signal with respect to the trigger input signal. Specifies the delay of the generated Exsync signal, with respect to an external trigger input. The resulting Exsync2 signal is a delayed clone of the Exsync. Polarity, period, etc. are the same as for Exsync. Note that the line delay needs to be less than the line period even for external trigger modes where the internal line period is not used."},
    {.label = "Image Trigger / Flash", .content = Group{.depth = 0}},
    {.id = FG_IMGTRIGGERMODE, .label = "Mode", .content = Enumeration{enumImageTriggerMode}, .access = betweenAcquisitions, .paramClass = 1,
     .text = "Trigger mode for the image generation. An image trigger can define the start and length of an image. FreeRun: All incoming lines received from camera are accepted. Image size is defined by ROI. ASync_External_Trigger: At the rising edge of an accepted image trigger input signal, a new frame is started and incoming lines are appended to an image up to ROI-Height. A new rising edge of the image trigger is only accepted after the current frame is finished. Gated_External_Trigger: In gated mode, the input signal active state defines the height of the resulting frame. ROI-Height is the maximum height. _Multibuffer modes can handle a certain number of lines for multiple frames of ROI size."},
    {.id = FG_IMGTRIGGERON, .label = "Image Trigger Enable", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1,
     .text = "Enable or disable the image trigger module. The off state corresponds to FreeRun."},
    {.id = FG_FLASHON, .label = "Flash Enable", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1,
     .text = "Switch the flash signal on or off. The pulse width of the flash signal is equal to one line period. This will give a signal between the first Exsync rising edge and the following. A single Trigger is fired for a full frame. Flash Delay->Image Trigger will delay this by a given number of Exsync's."},
    {.id = FG_IMGTRIGGER_ASYNC_HEIGHT, .label = "Async Image Trigger Height", .content = UInt{1, 16777216, 1}, .access = betweenAcquisitions, .paramClass = 1, .unit = "lines",
     .text = "Total image height in lines in case of multi buffer mode. Only relevant if a Multibuffer image trigger mode is used."},
    {.id = FG_IMGTRIGGER_IS_BUSY, .label = "Image Trigger is Busy", .content = Enumeration{enumBusy}, .access = readOnly, .paramClass = 1,
     .text = "Using this readonly value it is possible to check if the image trigger is busy. This means that a image is currently acquired. During this time an additional image trigger will be ignored."},
    {.label = "Image Trigger Input", .content = Group{.depth = 1}},
    {.id = FG_IMGTRIGGERINSRC, .label = "Source", .content = Enumeration{enumImageTriggerInSource}, .access = anyTime, .paramClass = 1,
     .text = "Image trigger input signal source. Specifies the signal source which is used to trigger the image acquisition. This is only relevant if the Image Trigger Mode is set to Extern/Gate."},
    {.id = FG_IMGTRIGGERINPOLARITY, .label = "Polarity", .content = Enumeration{enumTriggerInPolarity}, .access = anyTime, .paramClass = 1,
     .text = "Polarity of the image trigger input."},
    {.id = FG_IMGTRIGGERGATEDELAY, .label = "Gate Delay", .content = UInt{0, 65535, 1}, .access = betweenAcquisitions, .paramClass = 1, .unit = "lines",
     .text = "Delay of the image gate in lines with respect to ExSync. The image trigger will be delayed by a defined number of lines."},
    {.id = FG_IMGTRIGGERDEBOUNCING, .label = "Debouncing Time", .content = Double{0.008, 65.0, 0.008}, .access = anyTime, .paramClass = 1, .unit = microseconds,
     .text = "This parameter specifies the debouncing time of the input image trigger. Signals must keep the same state during the debounce time to be detected as such. Fast signal changes within the debounce time will be filtered out."},
    {.id = FG_STROBEPULSEDELAY, .label = "Flash Delay->Image Trigger", .content = UInt{0, 65535, 1}, .access = betweenAcquisitions, .paramClass = 1, .unit = "lines",
     .text = "Delay of the flash signal in lines with respect to the image trigger input signal with respect to ExSync."},
    {.label = "Flash", .content = Group{.depth = 2}},
    {.id = FG_FLASH_POLARITY, .label = "Flash Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "Defines the generated Flash signal polarity."},
    {.label = "Software Trigger", .content = Group{.depth = 2}},
    {.id = FG_SENDSOFTWARETRIGGER, .label = "Software Trigger Pulse", .content = Enumeration{enumApply}, .access = anyTime, .paramClass = 1,
     .text = "Generates a software trigger pulse when applied (=1). Setting this parameter to 1 will generate a software trigger. This is only relevant if the TriggerMode is set to an external trigger mode and Image Trigger Source is set to SoftwareTrigger."},
    {.id = FG_SETSOFTWARETRIGGER, .label = "Software Trigger State", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "Turn software trigger signal on or off. With this parameter a software gate can be produced in case of an extern gated image trigger mode."},
    {.label = "Signal Analyzer", .content = Group{.depth = 0}},
    {.id = FG_SIGNAL_ANALYZER_0_SOURCE, .label = "Signal Analyzer 0 Source", .content = Enumeration{enumSignalSourceExtended}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal source analyzer module 0"},
    {.id = FG_SIGNAL_ANALYZER_0_POLARITY, .label = "Signal Analyzer 0 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal analyzer module 0 polarity"},
    {.id = FG_SIGNAL_ANALYZER_0_PERIOD_CURRENT, .label = "Signal Analyzer 0 Current Period", .content = Double{0.008, 34359738.36, 0.008}, .access = readOnly, .paramClass = 1, .unit = microseconds,
     .text = "Will return the last meassured period of the selected souce and polarity."},
    {.id = FG_SIGNAL_ANALYZER_0_PERIOD_MAX, .label = "Signal Analyzer 0 Max Period", .content = Double{0.008, 34359738.36, 0.008}, .access = readOnly, .paramClass = 1, .unit = microseconds,
     .text = "Will return the maximum meassured period of the selected souce and polarity after reset."},
    {.id = FG_SIGNAL_ANALYZER_0_PERIOD_MIN, .label = "Signal Analyzer 0 Min Period", .content = Double{0.008, 34359738.36, 0.008}, .access = readOnly, .paramClass = 1, .unit = microseconds,
     .text = "Will return the minimum meassured period of the selected souce and polarity after reset."},
    {.id = FG_SIGNAL_ANALYZER_0_PULSE_COUNT, .label = "Signal Analyzer 0 Pulse Count", .content = UInt{0, 4294967295, 1}, .access = readOnly, .paramClass = 1, .unit = microseconds,
     .text = "Returns the number of rising edges e.g. pulses of the selected source and polarity after reset."},
    {.id = FG_SIGNAL_ANALYZER_1_SOURCE, .label = "Signal Analyzer 1 Source", .content = Enumeration{enumSignalSourceExtended}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal source analyzer module 0"},
    {.id = FG_SIGNAL_ANALYZER_1_POLARITY, .label = "Signal Analyzer 1 Polarity", .content = Enumeration{enumPolarity}, .access = anyTime, .paramClass = 1,
     .text = "Select the signal analyzer module 0 polarity"},
    {.id = FG_SIGNAL_ANALYZER_1_PERIOD_CURRENT, .label = "Signal Analyzer 1 Current Period", .content = Double{0.008, 34359738.36, 0.008}, .access = readOnly, .paramClass = 1, .unit = microseconds,
     .text = "Will return the last meassured period of the selected souce and polarity."},
    {.id = FG_SIGNAL_ANALYZER_1_PERIOD_MAX, .label = "Signal Analyzer 1 Max Period", .content = Double{0.008, 536870.911875, 0.008}, .access = readOnly, .paramClass = 1, .unit = microseconds,
     .text = "Will return the maximum meassured period of the selected souce and polarity after reset."},
    {.id = FG_SIGNAL_ANALYZER_1_PERIOD_MIN, .label = "Signal Analyzer 1 Min Period", .content = Double{0.008, 536870.911875, 0.008}, .access = readOnly, .paramClass = 1, .unit = microseconds,
     .text = "Will return the minimum meassured period of the selected souce and polarity after reset."},
    {.id = FG_SIGNAL_ANALYZER_1_PULSE_COUNT, .label = "Signal Analyzer 1 Pulse Count", .content = UInt{0, 4294967295, 1}, .access = readOnly, .paramClass = 1, .unit = microseconds,
     .text = "Returns the number of rising edges e.g. pulses of the selected source and polarity after reset."},
    {.id = FG_SIGNAL_ANALYZER_PULSE_COUNT_DIFFERENCE, .label = "Signal Analyzer Pulse Count Difference", .content = Int64{-4294967296, 4294967295, 1}, .access = readOnly, .paramClass = 1, .unit = microseconds,
     .text = "Use this read only parameter to check the difference of the signal analyzer 0 and 1 pulse counter values (Analyzer 0 - Analyzer 1 value). This can be used to check for trigger lost signals if analyzer 0 will count the exsyc pulses and analyzer 1 the returned camera lines. In this case the difference is between 0 and 1 for sinle line cameras with no extra delay."},
    {.id = FG_SIGNAL_ANALYZER_CLEAR, .label = "Signal Analyzer Clear", .content = Enumeration{enumApply}, .access = anyTime, .paramClass = 1,
     .text = "Clear all measurement results. "},
    {.label = "Overflow", .content = Group{.depth = 0}},
    {.id = FG_FILLLEVEL, .label = "Buffer fill level", .content = UInt{0, 100, 1}, .access = readOnly, .paramClass = 1, .unit = "%",
     .text = "Current fill level of the buffer. The value allows to check if the mean input bandwidth of the camera is to high to be processed with the applet."},
    {.id = FG_OVERFLOW, .label = "Buffer overflow", .content = UInt{0, 1, 1}, .access = readOnly, .paramClass = 1,
     .text = "Signals if the image buffer is in overflow state. Note that an overflow results in loss of images. The parameter is reset at each readout cycle."},
    {.label = "Image Selector", .content = Group{.depth = 0}},
    {.id = FG_IMG_SELECT_PERIOD, .label = "Image select period", .content = UInt{1, 256, 1}, .access = anyTime, .paramClass = 1, .unit = "image",
     .text = "Select the length of an image sequence. Only a single image of the sequence is grabbed."},
    {.id = FG_IMG_SELECT, .label = "Image select", .content = UInt{0, 255, 1}, .access = anyTime, .paramClass = 1, .unit = "image",
     .text = "Defines which image in a sequence is grabbed."},
    {.label = "White Balance", .content = Group{.depth = 0}},
    {.id = FG_SCALINGFACTOR_RED, .label = "Red Gain", .content = Double{0.0, 3.9990234375, 0.0009765625}, .access = anyTime, .paramClass = 1,
     .text = "Red gain of the Rgb white balancing."},
    {.id = FG_SCALINGFACTOR_BLUE, .label = "Blue Gain", .content = Double{0.0, 3.9990234375, 0.0009765625}, .access = anyTime, .paramClass = 1,
     .text = "Blue gain of the Rgb white balancing."},
    {.id = FG_SCALINGFACTOR_GREEN, .label = "Green Gain", .content = Double{0.0, 3.9990234375, 0.0009765625}, .access = anyTime, .paramClass = 1,
     .text = "Green gain of the Rgb white balancing."},
    {.label = "Lookup Table", .content = Group{.depth = 0}},
    {.id = FG_LUT_ENABLE, .label = "Enabled", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1,
     .text = "Switch the LUT and processing functionality on or off."},
    {.id = FG_LUT_TYPE, .label = "Type", .content = Enumeration{enumLutType}, .access = anyTime, .paramClass = 1,
     .text = "Enables the LUT to be load with custom values or use the applet's processor."},
    {.id = FG_LUT_VALUE_RED, .label = "Red LUT Values", .content = UIntField{lutEntries, 0, lutLargest, 1}, .access = anyTime, .paramClass = 1,
     .text = "Field with red LUT Values."},
    {.id = FG_LUT_VALUE_GREEN, .label = "Green LUT Values", .content = UIntField{lutEntries, 0, lutLargest, 1}, .access = anyTime, .paramClass = 1,
     .text = "Field with green LUT Values."},
    {.id = FG_LUT_VALUE_BLUE, .label = "Blue LUT Values", .content = UIntField{lutEntries, 0, lutLargest, 1}, .access = anyTime, .paramClass = 1,
     .text = "Field with blue LUT Values."},
    {.id = FG_LUT_CUSTOM_FILE, .label = "Load File", .content = Text{"*.lut"}, .access = anyTime, .paramClass = 1,
     .text = "Filename with custom lookup table values."},
    {.id = FG_LUT_SAVE_FILE, .label = "Save File", .content = Text{"*.lut"}, .access = anyTime, .paramClass = 1,
     .text = "Save current LUT configuration."},
    {.label = "Applet Properties", .content = Group{.depth = 1}},
    {.id = FG_LUT_IMPLEMENTATION_TYPE, .label = "LUT Implementation Type", .content = Enumeration{enumLutImplementation}, .access = readOnly, .paramClass = 1,
     .text = "Type of LUT implementation."},
    {.id = FG_LUT_IN_BITS, .label = "LUT In Bits", .content = UInt{0, 0, 0}, .access = readOnly, .paramClass = 1, .unit = "bit",
     .text = "Pixel bit depth at LUT input."},
    {.id = FG_LUT_OUT_BITS, .label = "LUT Out Bits", .content = UInt{0, 0, 0}, .access = readOnly, .paramClass = 1, .unit = "bit",
     .text = "Pixel bit depth at LUT output."},
    {.label = "Processing", .content = Group{.depth = 0}},
    {.id = FG_PROCESSING_OFFSET, .label = "Offset", .content = Double{-1.0, 1.0, 2.220446049250313e-16}, .access = anyTime, .paramClass = 1,
     .text = "Offset correction value. Available when LUT functionality is enabled."},
    {.id = FG_PROCESSING_GAIN, .label = "Gain", .content = Double{0.0, 16384.0, 2.220446049250313e-16}, .access = anyTime, .paramClass = 1,
     .text = "Gain correction value. Available when LUT functionality is enabled."},
    {.id = FG_PROCESSING_GAMMA, .label = "Gamma", .content = Double{-1000.0, 1000.0, 2.220446049250313e-16}, .access = anyTime, .paramClass = 1,
     .text = "Gamma correction value. Available when LUT functionality is enabled."},
    {.id = FG_PROCESSING_INVERT, .label = "Invert", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1,
     .text = "Invert output. Available when LUT functionality is enabled."},
    {.label = "Output Format", .content = Group{.depth = 0}},
    {.id = FG_FORMAT, .label = "Output Format", .content = Enumeration{enumOutputFormat}, .access = betweenAcquisitions, .paramClass = 1,
     .text = "Set the output format of the pixel data to the PC memory. The data is converted from the internal bit width and color format to the selected output format. This settings are not related to the pixel format input from the camera sensor. See pixel format instead."},
    {.id = FG_BITALIGNMENT, .label = "Alignment", .content = Enumeration{enumBitAlignment}, .access = anyTime, .paramClass = 1,
     .text = "Defines if the output data are right aligned or left aligned."},
    {.id = FG_PIXELDEPTH, .label = "Pixel Depth", .content = UInt{0, 128, 1}, .access = readOnly, .paramClass = 1, .unit = "bit",
     .text = "Internal processing bit depth of the applet. This is the maximal bit depth in which the pixels are processed. If you select a higher output and input bit depth, the data could be truncated. Note that for color processing, the value represents only one component."},
    {.id = FG_CUSTOM_BIT_SHIFT_RIGHT, .label = "Bit Shift Right", .content = UInt{0, 15, 1}, .access = anyTime, .paramClass = 2, .unit = "bit",
     .text = "Define a custom right bit shift of the pixel data in the output format. Set FG_BITALIGNEMENT to custom."},
    {.label = "Camera Simulator", .content = Group{.depth = 0}},
    {.id = FG_CAMERASIMULATOR_ENABLE, .label = "Image Source", .content = Enumeration{enumSimulatorSource}, .access = anyTime, .paramClass = 1,
     .text = "Use internal frame generator or Camera input. Only 8 bit as pixel format is supported correctly."},
    {.id = FG_CAMERASIMULATOR_WIDTH, .label = "Width", .content = UInt{1, simulatorPixels, 1}, .access = anyTime, .paramClass = 2, .unit = "pixel",
     .text = "Image width of camera simulator. Width is automatically rounded up to internal processing granularity. Reading the parameter will return the rounded value."},
    {.id = FG_CAMERASIMULATOR_LINE_GAP, .label = "Line Gap", .content = UInt{0, simulatorPixels, 1}, .access = anyTime, .paramClass = 2, .unit = "pixel",
     .text = "Gap between lines of camera simulator. Value is automatically rounded up to internal processing granularity. Reading the parameter will return the rounded value."},
    {.id = FG_CAMERASIMULATOR_HEIGHT, .label = "Height", .content = UInt{1, simulatorLines, 1}, .access = anyTime, .paramClass = 2, .unit = "pixel",
     .text = "Image height of camera simulator."},
    {.id = FG_CAMERASIMULATOR_FRAME_GAP, .label = "Frame Gap", .content = UInt{0, simulatorLines, 1}, .access = anyTime, .paramClass = 2, .unit = "pixel",
     .text = "Line Gap between frames of camera simulator."},
    {.id = FG_CAMERASIMULATOR_PATTERN, .label = "Pattern", .content = Enumeration{enumSimulatorPattern}, .access = anyTime, .paramClass = 1,
     .text = "Camera simulator pattern selector."},
    {.id = FG_CAMERASIMULATOR_PATTERN_OFFSET, .label = "Pattern Offset", .content = UInt{0, 255, 1}, .access = anyTime, .paramClass = 2, .unit = "pixel value",
     .text = "Adds the defined value as an offset to the generated patterns."},
    {.id = FG_CAMERASIMULATOR_ROLL, .label = "Roll", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1,
     .text = "Select rolling or static pattern."},
    {.id = FG_CAMERASIMULATOR_SELECT_MODE, .label = "Speed Mode", .content = Enumeration{enumSimulatorSpeedMode}, .access = anyTime, .paramClass = 1,
     .text = "Select input parameter for speed control."},
    {.id = FG_CAMERASIMULATOR_PIXEL_FREQUENCY, .label = "Pixel Frequency", .content = Double{0.9999999999999998, -1.0, 2.0}, .access = anyTime, .paramClass = 2, .unit = "MHz",
     .text = "Defines the pixel frequency of the camera simulator."},
    {.id = FG_CAMERASIMULATOR_LINERATE, .label = "Line Rate", .content = Double{0.15, -17857.14285714286, 7e-11}, .access = anyTime, .paramClass = 2, .unit = "Hz",
     .text = "Defines the line rate of the camera simulator."},
    {.id = FG_CAMERASIMULATOR_FRAMERATE, .label = "Framerate", .content = Double{0.15, -17857.14285714286, 7e-11}, .access = anyTime, .paramClass = 2, .unit = "Hz",
     .text = "Camera simulator framerate."},
    {.id = FG_CAMERASIMULATOR_TRIGGER_MODE, .label = "Trigger Mode", .content = Enumeration{enumSimulatorTriggerMode}, .access = anyTime, .paramClass = 1,
     .text = "Select the trigger module to trigger the camera simulator."},
    {.id = FG_CAMERASIMULATOR_ACTIVE, .label = "Active Parts", .content = UInt{1, 2000, 1}, .access = readOnly, .paramClass = 1, .unit = "pixel",
     .text = "Active parts for frequency generation."},
    {.id = FG_CAMERASIMULATOR_PASSIVE, .label = "Passive Parts", .content = UInt{1, 2000, 1}, .access = readOnly, .paramClass = 1, .unit = "pixel",
     .text = "Passive part for frequency generation."},
    {.label = "Miscellaneous", .content = Group{.depth = 0}},
    {.id = FG_TIMEOUT, .label = "Timeout", .content = UInt{2, 2147483646, 1}, .access = anyTime, .paramClass = 1, .unit = "seconds",
     .text = "Internal framegrabber image timeout. This is independend of the runtime acquisition timeout value."},
    {.id = FG_APPLET_VERSION, .label = "Applet version", .content = UInt{0, 0, 0}, .access = readOnly, .paramClass = 1,
     .text = "Returns the applet version. Please report the version if you are requesting support."},
    {.id = FG_APPLET_REVISION, .label = "Applet revision", .content = UInt{0, 0, 0}, .access = readOnly, .paramClass = 1,
     .text = "Returns the applet revision. Please report the revision if you are requesting support."},
    {.id = FG_APPLET_ID, .label = "Applet Id", .content = Text{""}, .access = readOnly, .paramClass = 1,
     .text = "Returns the applet id."},
    {.id = FG_APPLET_BUILD_TIME, .label = "Build Time", .content = Text{""}, .access = readOnly, .paramClass = 1,
     .text = "Returns the timestamp, the hardware applet file has been generated. Please let the support team know this value on request."},
    {.id = FG_TSL_FILE, .label = "TSL file", .content = Text{"*.tsl"}, .access = readOnly, .paramClass = 1,
     .text = "The name of the Hardware-Applet (TSL) file on which this CaptureKits is based."},
    {.id = FG_DMASTATUS, .label = "DMA Status", .content = UInt{0, 0, 0}, .access = readOnly, .paramClass = 1,
     .text = "Returns the status of the DMA transmission i.e. acquisition state. 0 = stopped DMA, 1 = started DMA"},
    {.id = FG_CAMSTATUS, .label = "Camera Status", .content = UInt{0, 1, 1}, .access = readOnly, .paramClass = 1,
     .text = "Returns the status of a connected CameraLink camera. For CoaXPress this is not of interest."},
    {.id = FG_CAMSTATUS_EXTENDED, .label = "Camera Status Extended", .content = UInt{0, 255, 1}, .access = readOnly, .paramClass = 1,
     .text = "Returns the extended status of the camera. Bit = meaning: 0 = CameraPixelClk, 1 = CameraLval, 2 = CameraFval, 3 = Camera CC1 Signal, 4 = ExTrg / external trigger, 5 = BufferOverflow, 6 = BufferStatus-LSB, 7 = BufferStatus-MSB"},
    {.id = FG_SYSTEMMONITOR_FPGA_TEMPERATURE, .label = "FGPA Temperature", .content = Double{0.0, 1000.0, 0.0}, .access = readOnly, .paramClass = 1, .unit = "Celsius",
     .text = "Returns the current FPGA die temperature."},
    {.id = FG_SYSTEMMONITOR_FPGA_VCC_INT, .label = "FGPA Vcc Int", .content = Double{-1000.0, 1000.0, 0.0}, .access = readOnly, .paramClass = 1, .unit = "V",
     .text = "Returns the current FPGA internal Vcc."},
    {.id = FG_SYSTEMMONITOR_FPGA_VCC_AUX, .label = "FGPA Vcc Aux", .content = Double{-1000.0, 1000.0, 0.0}, .access = readOnly, .paramClass = 1, .unit = "V",
     .text = "Returns the current FPGA auxiliary Vcc."},
    {.id = FG_SYSTEMMONITOR_FPGA_VCC_BRAM, .label = "FGPA Vcc BRAM", .content = Double{-1000.0, 1000.0, 0.0}, .access = readOnly, .paramClass = 1, .unit = "V",
     .text = "Returns the current FPGA BRAM Vcc."},
    {.id = FG_SYSTEMMONITOR_CURRENT_LINK_WIDTH, .label = "Current Link Width", .content = UInt{0, 15, 0}, .access = readOnly, .paramClass = 1, .unit = "lanes",
     .text = "Returns the current PCIe link width."},
    {.id = FG_SYSTEMMONITOR_CURRENT_LINK_SPEED, .label = "Current Link Speed", .content = Double{0.0, 1000.0, 0.0}, .access = readOnly, .paramClass = 1, .unit = "GB/s",
     .text = "Returns the current PCIe link speed in Gibibyte (2^30 byte)."},
    {.id = FG_SYSTEMMONITOR_PCIE_LINK_GEN2_CAPABLE, .label = "PCIe Link Gen 2 Capable", .content = Enumeration{enumYesNo}, .access = readOnly, .paramClass = 1,
     .text = "Information if the PCIe link is generation 2 capable."},
    {.id = FG_SYSTEMMONITOR_PCIE_LINK_PARTNER_GEN2_CAPABLE, .label = "PCIe Link Partner Gen 2 Capable", .content = Enumeration{enumYesNo}, .access = readOnly, .paramClass = 1,
     .text = "Information if the PCIe link partner is generation 2 capable."},
    {.id = FG_SYSTEMMONITOR_PCIE_TRAINED_PAYLOAD_SIZE, .label = "PCIe Trained Payload Size", .content = UInt{0, 1024, 0}, .access = readOnly, .paramClass = 1, .unit = "byte",
     .text = "Returns the PCIe trained payload size."},
    {.id = FG_SYSTEMMONITOR_EXTENSION_CONNECTOR_PRESENT, .label = "Extension Connector Present", .content = Enumeration{enumYesNo}, .access = readOnly, .paramClass = 1,
     .text = "Information if the extension connector is present."},
    {.id = FG_ALTERNATIVE_BOARD_DETECTION, .label = "Alternative Board Detection", .content = Enumeration{enumOnOff}, .access = readOnly, .paramClass = 1,
     .text = "Indicates if the grabber is configured for an alternative PCIe board detection algorithm."},
    {.id = FG_SYSTEMMONITOR_FPGA_DNA, .label = "FPGA DNA", .content = UInt64{0, 144115188075855871, 0}, .access = readOnly, .paramClass = 1,
     .text = "Returns the FPGA DNA."},
    {.label = "Debug", .content = Group{.depth = 1}},
    {.id = FG_DEBUGSOURCE, .label = "Debug Source", .content = UInt{0, 10, 1}, .access = anyTime, .paramClass = 2,
     .text = internalUse},
    {.id = FG_DEBUGSOURCENAME, .label = "Debug Source Name", .content = Text{""}, .access = readOnly, .paramClass = 1,
     .text = internalUse},
    {.id = FG_DEBUGSAVECONFIG, .label = "Debug Save Config", .content = Text{"*.mcf"}, .access = anyTime, .paramClass = 1,
     .text = internalUse},
    {.id = FG_DEBUG_VERSION, .label = "Version", .content = Text{""}, .access = readOnly, .paramClass = 1,
     .text = internalUse},
    {.label = "Input", .content = Group{.depth = 2}},
    {.id = FG_DEBUGINENABLE, .label = "Debug Input Mode", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1,
     .text = internalUse},
    {.id = FG_DEBUGFILE, .label = "Debug File", .content = Text{""}, .access = anyTime, .paramClass = 1,
     .text = internalUse},
    {.id = FG_DEBUGINSERT, .label = "Debug Insert Image", .content = Enumeration{enumApply}, .access = anyTime, .paramClass = 1,
     .text = internalUse},
    {.id = FG_DEBUGWRITEPIXEL, .label = "Debug Write Pixel", .content = UInt64{0, 144115188075855871, 1}, .access = anyTime, .paramClass = 2,
     .text = internalUse},
    {.id = FG_DEBUGWRITEFLAG, .label = "Debug Write Flag", .content = Enumeration{enumDebugWriteFlag}, .access = anyTime, .paramClass = 1,
     .text = internalUse},
    {.id = FG_DEBUGREADY, .label = "Debug Write Ready", .content = Enumeration{enumYesNo}, .access = readOnly, .paramClass = 1,
     .text = internalUse},
    {.label = "Output", .content = Group{.depth = 2}},
    {.id = FG_DEBUGOUTENABLE, .label = "Debug Output Mode", .content = Enumeration{enumOnOff}, .access = anyTime, .paramClass = 1,
     .text = internalUse},
    {.id = FG_DEBUGOUTXPOS, .label = "Debug Output XPosition", .content = UInt{4, sensorPixels, 1}, .access = readOnly, .paramClass = 1, .unit = "pixel",
     .text = internalUse},
    {.id = FG_DEBUGOUTYPOS, .label = "Debug Output YPosition", .content = UInt{1, sensorLines, 1}, .access = readOnly, .paramClass = 1, .unit = "pixel",
     .text = internalUse},
    {.id = FG_DEBUGOUTPIXEL, .label = "Debug Output Pixel", .content = UInt{0, 4294967295, 1}, .access = readOnly, .paramClass = 2, .unit = "pixel",
     .text = internalUse},
};
// clang-format on

/** The published limits of a parameter that is known at compile time. */
template <typename Limits> consteval Limits limitsOf(int id) {
    const TreeRow* row = parameterTree;
    while (row->id != id)
        ++row;
    return std::get<Limits>(row->content);
}

/** Description of the parameter with this id; the empty text for those that have no record in the tree. */
constexpr const char* descriptionOf(int id) {
    for (const TreeRow& row : parameterTree)
        if (row.id == id) return row.text;
    return "";
}

} // namespace catalogue

#endif
