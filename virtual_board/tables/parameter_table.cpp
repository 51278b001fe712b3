#include "virtual_board/tables/design_tables.h"

#include <string>
#include <unordered_map>

namespace vboard {
namespace {

constexpr EnumEntry offOn[] = {{0, "Off", "OFF"}, {1, "On", "ON"}};
constexpr EnumEntry highLow[] = {{0, "High active", "HIGH_ACTIVE"}, {1, "Low active", "LOW_ACTIVE"}};
constexpr EnumEntry portOrSimulator[] = {{0, "Camera port", "CAMERA_PORT"}, {1, "Simulator", nullptr}};

constexpr ParameterRow parameters[] = {
    text("Device1_Process0_AppletProperties_AppletUid", readOnly, "7b52c6d0-1f4e-4c57-8a3d-5e90b4a1c2f8"),
    text("Device1_Process0_AppletProperties_BuildTime", readOnly, "2022-12-21 06:43:16"),
    u32("Device1_Process0_BoardStatus_AlternativeBoardDetection", readOnly, 0),
    u32("Device1_Process0_BoardStatus_ExtensionConnectorPresent", readOnly, 1),
    u64("Device1_Process0_BoardStatus_FpgaDNA", readOnly, 0x01c3'5a7e'91d2'0b64).upTo(0x01ff'ffff'ffff'ffff),
    f64("Device1_Process0_BoardStatus_FpgaTemperature", readOnly, 47.25).in("Celsius"),
    f64("Device1_Process0_BoardStatus_FpgaVccAux", readOnly, 1.8).in("V"),
    f64("Device1_Process0_BoardStatus_FpgaVccBram", readOnly, 0.95).in("V"),
    f64("Device1_Process0_BoardStatus_FpgaVccInt", readOnly, 0.95).in("V"),
    f64("Device1_Process0_BoardStatus_PcieCurrentLinkSpeed", readOnly, 3.725).in("GB/s"),
    u32("Device1_Process0_BoardStatus_PcieCurrentLinkWidth", readOnly, 8).in("lanes"),
    u32("Device1_Process0_BoardStatus_PcieLinkGen2Capable", readOnly, 1),
    u32("Device1_Process0_BoardStatus_PcieLinkPartnerGen2Capable", readOnly, 1),
    u32("Device1_Process0_BoardStatus_PcieTrainedPayloadSize", readOnly, 256).in("byte"),
    u32("Device1_Process0_Buffer_0_DRAM_DRAM_A_0_FillLevel", readOnly, 0).in("%").upTo(100),
    u32("Device1_Process0_Buffer_0_DRAM_DRAM_A_0_Imp_DRAM_RamAddressWidth", readOnly, 20),
    u32("Device1_Process0_Buffer_0_DRAM_DRAM_A_0_Imp_DRAM_RamDataWidth", readOnly, 512),
    u32("Device1_Process0_Buffer_0_DRAM_DRAM_A_1_FillLevel", readOnly, 0).in("%").upTo(100),
    u32("Device1_Process0_Buffer_0_DRAM_DRAM_A_2_FillLevel", readOnly, 0).in("%").upTo(100),
    u32("Device1_Process0_Buffer_0_LinkPixelSpace_Parallelism", readOnly, 20),
    u32("Device1_Process0_Buffer_0_PixelFormat", writable, 8).upTo(16),
    u32("Device1_Process0_Buffer_0_SensorHeight", writable, 1024),
    u32("Device1_Process0_Buffer_0_SensorWidth", writable, 1024).upTo(16384),
    u32("Device1_Process0_Buffer_0_XLength", writable, 1024).upTo(16384),
    u32("Device1_Process0_Buffer_0_XMirror", writable, 0).oneOf(offOn),
    u32("Device1_Process0_Buffer_0_XOffset", writable, 0).upTo(16380),
    i32("Device1_Process0_Buffer_0_YMirror", writable, 0).upTo(1),
    u32("Device1_Process0_CameraSimulator_ControlPixelClock_Mode", writable, 1),
    u32("Device1_Process0_CameraSimulator_EnableX_Enable_Value", writable, 1),
    u32("Device1_Process0_CameraSimulator_Enable_SelectSource", writable, 0).oneOf(portOrSimulator),
    u32("Device1_Process0_CameraSimulator_FrameGap_Number", writable, 1024),
    u32("Device1_Process0_CameraSimulator_Frame_Divisor", writable, 256),
    u32("Device1_Process0_CameraSimulator_LineGap_Number", writable, 32),
    u32("Device1_Process0_CameraSimulator_Offset_Value", writable, 0),
    u32("Device1_Process0_CameraSimulator_PixelFrequency_ActivePixel_Number", writable, 1),
    u32("Device1_Process0_CameraSimulator_PixelFrequency_RepeatPat_Divisor", writable, 1),
    u32("Device1_Process0_CameraSimulator_PixelFrequency_SequenceLength_ImageWidth", writable, 12207),
    u32("Device1_Process0_CameraSimulator_Size_ImageHeight", writable, 1024),
    u32("Device1_Process0_CameraSimulator_Size_ImageWidth", writable, 32),
    u32("Device1_Process0_CameraSimulator_TriggerValve_FreeRun_Select", writable, 1),
    u32("Device1_Process0_CameraSimulator_TriggerValve_TriggerValve_Mode", writable, 2),
    u32("Device1_Process0_CameraSimulator_Y_Divisor", writable, 1),
    u32("Device1_Process0_Camera_SortImage_ColorInterpret_SelectComponentsHeader_BlueComponent", writable, 2),
    u32("Device1_Process0_Camera_SortImage_ColorInterpret_SelectComponentsHeader_GreenComponent", writable,
        1),
    u32("Device1_Process0_Camera_SortImage_ColorInterpret_SelectComponentsHeader_RedComponent", writable, 0),
    u32("Device1_Process0_Camera_SortImage_ColorInterpret_SelectComponents_BlueComponent", writable, 2),
    u32("Device1_Process0_Camera_SortImage_ColorInterpret_SelectComponents_GreenComponent", writable, 1),
    u32("Device1_Process0_Camera_SortImage_ColorInterpret_SelectComponents_RedComponent", writable, 0),
    u32("Device1_Process0_ImageHeight_ImageHeight", writable, 1024),
    u32("Device1_Process0_ImageSelector_FG_IMG_SELECT_PERIOD_Divisor", writable, 1),
    u32("Device1_Process0_ImageSelector_FG_IMG_SELECT_PHASE_Number", writable, 0),
    field("Device1_Process0_LookupTable_B_LUTcontent", 65535),
    u32("Device1_Process0_LookupTable_EnableLUT_Value", writable, 0).oneOf(offOn),
    field("Device1_Process0_LookupTable_G_LUTcontent", 65535),
    field("Device1_Process0_LookupTable_R_LUTcontent", 65535),
    u32("Device1_Process0_OutputFormat_DynamicShift_Shift_Value", writable, 0),
    u32("Device1_Process0_OutputFormat_FG_FORMAT_SelectSource", writable, 0),
    u32("Device1_Process0_OverflowOccurred_Status", readOnly, 0).upTo(1).resetsOnRead(),
    u32("Device1_Process0_Trigger_InputSignal_ImgTrgInSource_Input_Select", writable, 0),
    u32("Device1_Process0_Trigger_InputSignal_LineTrgInSourceA_Input_Select", writable, 0),
    u32("Device1_Process0_Trigger_InputSignal_LineTrgInSourceB_Input_Select", writable, 0),
    u32("Device1_Process0_Trigger_Trigger_EncoderABLead", writable, 0),
    u32("Device1_Process0_Trigger_Trigger_EncoderABMode", writable, 1),
    u32("Device1_Process0_Trigger_Trigger_EncoderCompensation", writable, 0),
    u32("Device1_Process0_Trigger_Trigger_EncoderCompensationCount", writable, 0).upTo(0xfffff),
    f64("Device1_Process0_Trigger_Trigger_Exsync2Delay", writable, 0).in("us").upTo(1048.568),
    u32("Device1_Process0_Trigger_Trigger_ExsyncEnable", writable, 0).oneOf(offOn),
    f64("Device1_Process0_Trigger_Trigger_ExsyncExposure", writable, 19).in("us").upTo(1048.568),
    f64("Device1_Process0_Trigger_Trigger_ExsyncPeriod", writable, 200).in("us").upTo(2097.144),
    u32("Device1_Process0_Trigger_Trigger_ExsyncPolarity", writable, 1).oneOf(highLow),
    u32("Device1_Process0_Trigger_Trigger_FlashDelay", writable, 0),
    u32("Device1_Process0_Trigger_Trigger_FlashEnable", writable, 0).oneOf(offOn),
    u32("Device1_Process0_Trigger_Trigger_FlashPolarity", writable, 0).oneOf(highLow),
    f64("Device1_Process0_Trigger_Trigger_ImgTrgDebouncingTime", writable, 0.112).in("us").upTo(65.0),
    u32("Device1_Process0_Trigger_Trigger_ImgTrgDelay", writable, 0),
    u32("Device1_Process0_Trigger_Trigger_ImgTrgInPolarity", writable, 0),
    u32("Device1_Process0_Trigger_Trigger_ImgTrgInSource", writable, 0),
    u32("Device1_Process0_Trigger_Trigger_ImgTrgIsBusy", readOnly, 0).upTo(1),
    u32("Device1_Process0_Trigger_Trigger_ImgTriggerEnable", writable, 0).oneOf(offOn),
    u32("Device1_Process0_Trigger_Trigger_ImgTriggerMode", writable, 0),
    f64("Device1_Process0_Trigger_Trigger_LineTrgDebouncingTime", writable, 0.112).in("us").upTo(65.0),
    u32("Device1_Process0_Trigger_Trigger_LineTrgDownscaler", writable, 1),
    u32("Device1_Process0_Trigger_Trigger_LineTrgInPolarity", writable, 0).oneOf(highLow),
    u32("Device1_Process0_Trigger_Trigger_LineTrgInSourceA", writable, 0),
    u32("Device1_Process0_Trigger_Trigger_LineTrgInSourceB", writable, 1),
    u32("Device1_Process0_Trigger_Trigger_LineTrgPhase", writable, 1),
    u32("Device1_Process0_Trigger_Trigger_LineTriggerMode", writable, 1),
    u32("Device1_Process0_Trigger_Trigger_MaxGatedHeight", writable, 0),
    u32("Device1_Process0_Trigger_Trigger_SoftwareTrgInput", writable, 0),
    u32("Device1_Process0_Trigger_Trigger_SoftwareTrgPulse", writable, 0),
    u32("Device1_Process0_Trigger_Trigger_YLength", writable, 1024),
    u32("Device1_Process0_Trigger_Trigger_YOffset", writable, 0),
    f64("Device1_Process0_WhiteBalance_White_BlueCoefficient", writable, 1),
    f64("Device1_Process0_WhiteBalance_White_GreenCoefficient", writable, 1),
    f64("Device1_Process0_WhiteBalance_White_RedCoefficient", writable, 1),
    f64("Device1_Process1_Trigger_Analyzer_Analyzer0_PeriodCurrent", readOnly, 0).in("us"),
    f64("Device1_Process1_Trigger_Analyzer_Analyzer0_PeriodMax", readOnly, 0).in("us"),
    f64("Device1_Process1_Trigger_Analyzer_Analyzer0_PeriodMin", readOnly, 0).in("us"),
    u32("Device1_Process1_Trigger_Analyzer_Analyzer0_PulseCountSignal_Status", readOnly, 0),
    u32("Device1_Process1_Trigger_Analyzer_Analyzer0_Select_Polarity_Invert", writable, 0),
    u32("Device1_Process1_Trigger_Analyzer_Analyzer0_Select_SelectSignal_Select", writable, 0),
    f64("Device1_Process1_Trigger_Analyzer_Analyzer1_PeriodCurrent", readOnly, 0).in("us"),
    f64("Device1_Process1_Trigger_Analyzer_Analyzer1_PeriodMax", readOnly, 0).in("us"),
    f64("Device1_Process1_Trigger_Analyzer_Analyzer1_PeriodMin", readOnly, 0).in("us"),
    u32("Device1_Process1_Trigger_Analyzer_Analyzer1_PulseCountSignal_Status", readOnly, 0),
    u32("Device1_Process1_Trigger_Analyzer_Analyzer1_Select_Polarity_Invert", writable, 0),
    u32("Device1_Process1_Trigger_Analyzer_Analyzer1_Select_SelectSignal_Select", writable, 0),
    u32("Device1_Process1_Trigger_Analyzer_Clear_Value", writable, 0),
    i64("Device1_Process1_Trigger_Analyzer_Difference_Status", readOnly, 0),
    u32("Device1_Process1_Trigger_Events_SelectCustomSignalEvent0_Polarity_Invert", writable, 0),
    u32("Device1_Process1_Trigger_Events_SelectCustomSignalEvent0_SelectSignal_Select", writable, 0),
    u32("Device1_Process1_Trigger_Events_SelectCustomSignalEvent1_Polarity_Invert", writable, 0),
    u32("Device1_Process1_Trigger_Events_SelectCustomSignalEvent1_SelectSignal_Select", writable, 0),
    u32("Device1_Process1_Trigger_Inputs_Debounce8_Prescale_Period", writable, 1),
    u32("Device1_Process1_Trigger_Inputs_InputStatus_Status", readOnly, 0).upTo(0xfff),
    u32("Device1_Process1_Trigger_OutputMapping_CamTrigger0_CLHSTrigger_EnablePulseWidth_Value", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_CamTrigger0_SelectTrigger_Polarity_Invert", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_CamTrigger0_SelectTrigger_SelectSignal_Select", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectFrontGPO_Select0_Polarity_Invert", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectFrontGPO_Select0_SelectSignal_Select", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectFrontGPO_Select1_Polarity_Invert", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectFrontGPO_Select1_SelectSignal_Select", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectGPO_Select0_Polarity_Invert", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectGPO_Select0_SelectSignal_Select", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectGPO_Select1_Polarity_Invert", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectGPO_Select1_SelectSignal_Select", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectGPO_Select2_Polarity_Invert", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectGPO_Select2_SelectSignal_Select", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectGPO_Select3_Polarity_Invert", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectGPO_Select3_SelectSignal_Select", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectGPO_Select4_Polarity_Invert", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectGPO_Select4_SelectSignal_Select", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectGPO_Select5_Polarity_Invert", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectGPO_Select5_SelectSignal_Select", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectGPO_Select6_Polarity_Invert", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectGPO_Select6_SelectSignal_Select", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectGPO_Select7_Polarity_Invert", writable, 0),
    u32("Device1_Process1_Trigger_OutputMapping_SelectGPO_Select7_SelectSignal_Select", writable, 0),

    // The inputs of the output format's multiplexer, as texts. Those flagged "1" can be silenced.
    text("Device1_Process0_OutputFormat_FG_FORMAT_NoOfInputs", readOnly, "5"),
    text("Device1_Process0_OutputFormat_FG_FORMAT_MaxBits", readOnly, "16"),
    text("Device1_Process0_OutputFormat_FG_FORMAT_Input0", readOnly, "FG_COL24"),
    text("Device1_Process0_OutputFormat_FG_FORMAT_InputFlag0", readOnly, "1"),
    u32("Device1_Process0_OutputFormat_Convert0_VirtualTrash_EnableTrash_Value", writable, 1).upTo(1),
    text("Device1_Process0_OutputFormat_FG_FORMAT_Input1", readOnly, "FG_COL30"),
    text("Device1_Process0_OutputFormat_FG_FORMAT_InputFlag1", readOnly, "1"),
    u32("Device1_Process0_OutputFormat_Convert1_VirtualTrash_EnableTrash_Value", writable, 1).upTo(1),
    text("Device1_Process0_OutputFormat_FG_FORMAT_Input2", readOnly, "FG_BGR12"),
    text("Device1_Process0_OutputFormat_FG_FORMAT_InputFlag2", readOnly, "1"),
    u32("Device1_Process0_OutputFormat_Convert2_VirtualTrash_EnableTrash_Value", writable, 1).upTo(1),
    text("Device1_Process0_OutputFormat_FG_FORMAT_Input3", readOnly, "FG_COL42"),
    text("Device1_Process0_OutputFormat_FG_FORMAT_InputFlag3", readOnly, "1"),
    u32("Device1_Process0_OutputFormat_Convert3_VirtualTrash_EnableTrash_Value", writable, 1).upTo(1),
    text("Device1_Process0_OutputFormat_FG_FORMAT_Input4", readOnly, "FG_COL48"),
    text("Device1_Process0_OutputFormat_FG_FORMAT_InputFlag4", readOnly, "0"),

    // The debug points, as texts, and the parameters of each.
    text("Device1_Process0_Debug_Entries", readOnly, "3"),
    text("Device1_Process0_Debug_Name0", readOnly, "Camera"),
    text("Device1_Process0_Debug_Type0", readOnly, "InjectMonitor"),
    text("Device1_Process0_Debug_Path0", readOnly, "Camera_Debug"),
    text("Device1_Process0_Debug_Name1", readOnly, "Buffer"),
    text("Device1_Process0_Debug_Type1", readOnly, "Inject"),
    text("Device1_Process0_Debug_Path1", readOnly, "Buffer_0_Debug"),
    text("Device1_Process0_Debug_Name2", readOnly, "Output"),
    text("Device1_Process0_Debug_Type2", readOnly, "InjectMonitor"),
    text("Device1_Process0_Debug_Path2", readOnly, "OutputFormat_Debug"),
    u32("Device1_Process0_Camera_Debug_OperationMode", writable, 0).upTo(3),
    text("Device1_Process0_Camera_Debug_DebugFile", writable, ""),
    u32("Device1_Process0_Camera_Debug_Insert", writable, 0).upTo(1),
    u64("Device1_Process0_Camera_Debug_Inject_WritePixel", writable, 0).upTo(0x01ff'ffff'ffff'ffff),
    u32("Device1_Process0_Camera_Debug_Inject_WriteFlag", writable, 0).upTo(1),
    u32("Device1_Process0_Camera_Debug_Inject_ReadyForInjection", readOnly, 1).upTo(1),
    u32("Device1_Process0_Camera_Debug_XPosition", readOnly, 0).upTo(16383),
    u32("Device1_Process0_Camera_Debug_YPosition", readOnly, 0),
    u32("Device1_Process0_Camera_Debug_PixelValue", readOnly, 0).upTo(0xffff),
    u32("Device1_Process0_Buffer_0_Debug_OperationMode", writable, 0).upTo(1),
    text("Device1_Process0_Buffer_0_Debug_DebugFile", writable, ""),
    u32("Device1_Process0_Buffer_0_Debug_Insert", writable, 0).upTo(1),
    u64("Device1_Process0_Buffer_0_Debug_Inject_WritePixel", writable, 0).upTo(0x01ff'ffff'ffff'ffff),
    u32("Device1_Process0_Buffer_0_Debug_Inject_WriteFlag", writable, 0).upTo(1),
    u32("Device1_Process0_Buffer_0_Debug_Inject_ReadyForInjection", readOnly, 1).upTo(1),
    u32("Device1_Process0_OutputFormat_Debug_OperationMode", writable, 0).upTo(3),
    text("Device1_Process0_OutputFormat_Debug_DebugFile", writable, ""),
    u32("Device1_Process0_OutputFormat_Debug_Insert", writable, 0).upTo(1),
    u64("Device1_Process0_OutputFormat_Debug_Inject_WritePixel", writable, 0).upTo(0x01ff'ffff'ffff'ffff),
    u32("Device1_Process0_OutputFormat_Debug_Inject_WriteFlag", writable, 0).upTo(1),
    u32("Device1_Process0_OutputFormat_Debug_Inject_ReadyForInjection", readOnly, 1).upTo(1),
    u32("Device1_Process0_OutputFormat_Debug_XPosition", readOnly, 0).upTo(16383),
    u32("Device1_Process0_OutputFormat_Debug_YPosition", readOnly, 0),
    u32("Device1_Process0_OutputFormat_Debug_PixelValue", readOnly, 0).upTo(0xffff'ffff),

    // A second device besides the image path.
    u32("Device2_LinkMonitor_Enable", writable, 1).oneOf(offOn),
    u32("Device2_LinkMonitor_Lane0_ErrorCount", readOnly, 0),
    u32("Device2_LinkMonitor_Lane1_ErrorCount", readOnly, 3),
    i64("Device2_LinkMonitor_Skew", writable, -12).in("ps"),

    // The runtime's own parameters. They have an id; they cannot be looked up by name.
    u32("FG_APC_STOP_TIMEOUT", readOnly, 500).in("ms").answersTo(601),
    u32("FG_CAMSTATUS_EXTENDED", readOnly, 0x07).answersTo(2050),
    u32("FG_NR_OF_DMAS", readOnly, 1).answersTo(3050),
    u32("FG_NR_OF_CAMS", readOnly, 1).answersTo(3060),
    u32("FG_NR_OF_PROCESSES", readOnly, 1).answersTo(3070),
    u32("FG_DMA_PORT", readOnly, 0).answersTo(3080),
    u32("FG_CAM_PORT", readOnly, 0).answersTo(3090),
    u32("FG_TRANSFER_LEN", readOnly, 3145728).in("byte").answersTo(5210),
    u32("FG_DMASTATUS", readOnly, 0).answersTo(24092),
};

} // namespace

std::span<const ParameterRow> parameterRows() { return parameters; }

int findParameter(std::string_view name) {
    static const auto byName = [] {
        std::unordered_map<std::string_view, int> map;
        map.reserve(std::size(parameters));
        for (int row = 0; const ParameterRow& parameter : parameters)
            map.emplace(parameter.name, row++);
        return map;
    }();
    const auto found = byName.find(name);
    return found != byName.end() ? found->second : -1;
}

int rowOfId(int id) {
    const std::int64_t row = std::int64_t{id} - firstParameterId;
    if (row >= 0 && row < std::ssize(parameters) && parameters[row].number == 0) return static_cast<int>(row);
    // The runtime's own come last; they are few.
    for (std::int64_t own = std::ssize(parameters) - 1; own >= 0 && parameters[own].number != 0; --own)
        if (parameters[own].number == id) return static_cast<int>(own);
    return -1;
}

int idOfRow(int row) {
    const int number = parameters[row].number;
    return number != 0 ? number : firstParameterId + row;
}

} // namespace vboard
