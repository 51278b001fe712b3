#include "trigger/internal_events.h"

#include <atomic>
#include <bit>

namespace {

// One row, one line.
// clang-format off
constexpr InternalEventMetaInfo rows[] = {
    {.name = "FG_OVERFLOW_CAM0", .designName = "Device1_Process0_Overflow_Overflow", .dataName = "Error0", .value = 0},
    {.name = "FG_TRIGGER_INPUT0_RISING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin0", .dataName = "FG_TRIGGER_INPUT0_RISING", .value = -1},
    {.name = "FG_TRIGGER_INPUT0_FALLING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin0", .dataName = "FG_TRIGGER_INPUT0_FALLING", .value = -1},
    {.name = "FG_TRIGGER_INPUT1_RISING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin1", .dataName = "FG_TRIGGER_INPUT1_RISING", .value = -1},
    {.name = "FG_TRIGGER_INPUT1_FALLING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin1", .dataName = "FG_TRIGGER_INPUT1_FALLING", .value = -1},
    {.name = "FG_TRIGGER_INPUT2_RISING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin2", .dataName = "FG_TRIGGER_INPUT2_RISING", .value = -1},
    {.name = "FG_TRIGGER_INPUT2_FALLING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin2", .dataName = "FG_TRIGGER_INPUT2_FALLING", .value = -1},
    {.name = "FG_TRIGGER_INPUT3_RISING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin3", .dataName = "FG_TRIGGER_INPUT3_RISING", .value = -1},
    {.name = "FG_TRIGGER_INPUT3_FALLING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin3", .dataName = "FG_TRIGGER_INPUT3_FALLING", .value = -1},
    {.name = "FG_TRIGGER_INPUT4_RISING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin4", .dataName = "FG_TRIGGER_INPUT4_RISING", .value = -1},
    {.name = "FG_TRIGGER_INPUT4_FALLING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin4", .dataName = "FG_TRIGGER_INPUT4_FALLING", .value = -1},
    {.name = "FG_TRIGGER_INPUT5_RISING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin5", .dataName = "FG_TRIGGER_INPUT5_RISING", .value = -1},
    {.name = "FG_TRIGGER_INPUT5_FALLING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin5", .dataName = "FG_TRIGGER_INPUT5_FALLING", .value = -1},
    {.name = "FG_TRIGGER_INPUT6_RISING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin6", .dataName = "FG_TRIGGER_INPUT6_RISING", .value = -1},
    {.name = "FG_TRIGGER_INPUT6_FALLING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin6", .dataName = "FG_TRIGGER_INPUT6_FALLING", .value = -1},
    {.name = "FG_TRIGGER_INPUT7_RISING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin7", .dataName = "FG_TRIGGER_INPUT7_RISING", .value = -1},
    {.name = "FG_TRIGGER_INPUT7_FALLING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin7", .dataName = "FG_TRIGGER_INPUT7_FALLING", .value = -1},
    {.name = "FG_TRIGGER_FRONT_GPI0_RISING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontPin0", .dataName = "FG_TRIGGER_FRONT_GPI0_RISING", .value = -1},
    {.name = "FG_TRIGGER_FRONT_GPI0_FALLING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontNotPin0", .dataName = "FG_TRIGGER_FRONT_GPI0_FALLING", .value = -1},
    {.name = "FG_TRIGGER_FRONT_GPI1_RISING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontPin1", .dataName = "FG_TRIGGER_FRONT_GPI1_RISING", .value = -1},
    {.name = "FG_TRIGGER_FRONT_GPI1_FALLING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontNotPin1", .dataName = "FG_TRIGGER_FRONT_GPI1_FALLING", .value = -1},
    {.name = "FG_TRIGGER_FRONT_GPI2_RISING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontPin2", .dataName = "FG_TRIGGER_FRONT_GPI2_RISING", .value = -1},
    {.name = "FG_TRIGGER_FRONT_GPI2_FALLING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontNotPin2", .dataName = "FG_TRIGGER_FRONT_GPI2_FALLING", .value = -1},
    {.name = "FG_TRIGGER_FRONT_GPI3_RISING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontPin3", .dataName = "FG_TRIGGER_FRONT_GPI3_RISING", .value = -1},
    {.name = "FG_TRIGGER_FRONT_GPI3_FALLING", .designName = "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontNotPin3", .dataName = "FG_TRIGGER_FRONT_GPI3_FALLING", .value = -1},
    {.name = "FG_START_OF_FRAME_CAM_PORT_0", .designName = "Device1_Process1_Trigger_Events_Events_LVAL_FVAL_Cam0FrameStart", .dataName = "FG_START_OF_FRAME_CAM_PORT_0", .value = -1},
    {.name = "FG_END_OF_FRAME_CAM_PORT_0", .designName = "Device1_Process1_Trigger_Events_Events_LVAL_FVAL_Cam0FrameEnd", .dataName = "FG_END_OF_FRAME_CAM_PORT_0", .value = -1},
    {.name = "FG_START_OF_LINE_CAM_PORT_0", .designName = "Device1_Process1_Trigger_Events_Events_LVAL_FVAL_Cam0LineStart", .dataName = "LineTransferStart", .value = 0},
    {.name = "FG_END_OF_LINE_CAM_PORT_0", .designName = "Device1_Process1_Trigger_Events_Events_LVAL_FVAL_Cam0LineEnd", .dataName = "LineTransferEnd", .value = 0},
    {.name = "FG_CUSTOM_SIGNAL_EVENT_0", .designName = "Device1_Process1_Trigger_Events_Events_LVAL_FVAL_CustomSignalEvent0", .dataName = "CustomSignalEvent0", .value = -1},
    {.name = "FG_CUSTOM_SIGNAL_EVENT_1", .designName = "Device1_Process1_Trigger_Events_Events_LVAL_FVAL_CustomSignalEvent1", .dataName = "CustomSignalEvent1", .value = -1},
};
// clang-format on

/** One entry for each mask that a list of events can give: the 64 bits, and 0 for a 65th event. */
constexpr std::size_t maskCount = 65;

// Constant-initialised and trivial: nothing runs at load or at exit.
constinit std::atomic<const InternalEventMetaInfo*> s_internalEventMetaInfo[maskCount]{};

std::size_t bitOf(std::uint64_t mask) { return static_cast<std::size_t>(std::countr_zero(mask)); }

bool canBeNoted(std::uint64_t mask) { return mask == 0 || std::has_single_bit(mask); }

} // namespace

constinit const std::span<const InternalEventMetaInfo> internalEvents{rows};

void noteInternalEvent(std::uint64_t mask, const InternalEventMetaInfo& event) {
    if (!canBeNoted(mask)) return;
    const InternalEventMetaInfo* none = nullptr;
    s_internalEventMetaInfo[bitOf(mask)].compare_exchange_strong(none, &event, std::memory_order_acq_rel);
}

const InternalEventMetaInfo* findInternalEvent(std::uint64_t mask) {
    return canBeNoted(mask) ? s_internalEventMetaInfo[bitOf(mask)].load(std::memory_order_acquire) : nullptr;
}
