#include "virtual_board/tables/design_tables.h"

namespace vboard {
namespace {

// In the order of the masks. Publication 1 offers the design's own name.
constexpr TslEvent events[] = {
    {1, "Device1_Process1_Trigger_Events_Events_LVAL_FVAL_Cam0FrameStart"},
    {1, "Device1_Process1_Trigger_Events_Events_LVAL_FVAL_Cam0FrameEnd"},
    {1, "Device1_Process1_Trigger_Events_Events_LVAL_FVAL_Cam0LineStart"},
    {0, "Device1_Process1_Trigger_Events_Events_LVAL_FVAL_Cam0LineEnd"},
    {1, "Device1_Process0_Camera_LinkLost"},
    {1, "Device1_Process0_Overflow_Overflow"},
    {1, "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin0"},
    {1, "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin0"},
    {1, "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin1"},
    {1, "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin1"},
    {1, "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin2"},
    {1, "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin2"},
    {1, "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin3"},
    {1, "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin3"},
    {1, "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin4"},
    {1, "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin4"},
    {1, "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin5"},
    {1, "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin5"},
    {1, "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin6"},
    {1, "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin6"},
    {1, "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin7"},
    {1, "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin7"},
    {1, "Device1_Process0_BoardStatus_TemperatureAlarm"},
    {0, "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontPin0"},
    {0, "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontNotPin0"},
    {0, "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontPin1"},
    {0, "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontNotPin1"},
    {0, "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontPin2"},
    {0, "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontNotPin2"},
    {0, "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontPin3"},
    {0, "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontNotPin3"},
    {1, "Device1_Process1_Trigger_Events_Events_LVAL_FVAL_CustomSignalEvent0"},
    {1, "Device1_Process1_Trigger_Events_Events_LVAL_FVAL_CustomSignalEvent1"},
    {0, "Device1_Process1_Trigger_Inputs_Debounce8_Glitch"},
};

} // namespace

std::span<const TslEvent> eventRows() { return events; }

} // namespace vboard
