// Signal routing: which internal signal each output, analyzer and event uses, and whether it is inverted.
// Each has a pair of parameters, a source and a polarity, and a pair of design parameters.

#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"

#include <algorithm>

using namespace catalogue;

namespace {

struct DesignSignal {
    std::uint32_t select;
    std::uint32_t invert;
};

/** The design's number of a source. */
struct SignalSource {
    std::uint32_t source;
    DesignSignal signal; // while active high
};

// The design's 6 to 20 are not used.
constexpr SignalSource signalSources[] = {
    {GND, {0, 0}},
    {VCC, {0, 1}},
    {FG_SIGNAL_CAM0_EXSYNC, {1, 0}},
    {FG_SIGNAL_CAM0_EXSYNC2, {2, 0}},
    {FG_SIGNAL_CAM0_FLASH, {3, 0}},
    {FG_SIGNAL_CAM0_LVAL, {4, 0}},
    {FG_SIGNAL_CAM0_FVAL, {5, 0}},
    {FG_SIGNAL_GPI_0, {21, 0}},
    {FG_SIGNAL_GPI_1, {22, 0}},
    {FG_SIGNAL_GPI_2, {23, 0}},
    {FG_SIGNAL_GPI_3, {24, 0}},
    {FG_SIGNAL_GPI_4, {25, 0}},
    {FG_SIGNAL_GPI_5, {26, 0}},
    {FG_SIGNAL_GPI_6, {27, 0}},
    {FG_SIGNAL_GPI_7, {28, 0}},
    {FG_SIGNAL_FRONT_GPI_0, {29, 0}},
    {FG_SIGNAL_FRONT_GPI_1, {30, 0}},
    {FG_SIGNAL_FRONT_GPI_2, {31, 0}},
    {FG_SIGNAL_FRONT_GPI_3, {32, 0}},
    {FG_SIGNAL_CAM0_LINE_START, {33, 0}},
    {FG_SIGNAL_CAM0_LINE_END, {34, 0}},
    {FG_SIGNAL_CAM0_FRAME_START, {35, 0}},
    {FG_SIGNAL_CAM0_FRAME_END, {36, 0}},
};

/** The two levels. They have no polarity: the inversion distinguishes them. */
bool isStatic(std::uint32_t source) { return source == GND || source == VCC; }

DesignSignal resolveSignalSource(std::uint32_t source, std::uint32_t polarity) {
    const auto* row = std::ranges::find(signalSources, source, &SignalSource::source);
    if (row == std::end(signalSources)) refuse(FG_ERR_UNRESOLVED);
    DesignSignal signal = row->signal;
    if (polarity == FG_LOW && !isStatic(source)) signal.invert = 1;
    return signal;
}

} // namespace

/** A pair of parameters: the accepted values, the variables, the writers. */
struct FgLoomWrapperImpl::SignalRoute {
    EnumTable sources;
    std::uint32_t FgLoomWrapperImpl::*source;
    std::uint32_t FgLoomWrapperImpl::*polarity;
    void (FgLoomWrapperImpl::*writeSelect)(std::uint32_t);
    void (FgLoomWrapperImpl::*writeInvert)(std::uint32_t);
};

struct FgLoomWrapperImpl::SignalRoutes {
#define ROUTE(name, sources, design)                                                                         \
    static constexpr SignalRoute name{                                                                       \
        sources, &FgLoomWrapperImpl::m_##name##Source, &FgLoomWrapperImpl::m_##name##Polarity,               \
        &FgLoomWrapperImpl::loomSet_Process1_Trigger_##design##_SelectSignal_Select,                         \
        &FgLoomWrapperImpl::loomSet_Process1_Trigger_##design##_Polarity_Invert};
    ROUTE(triggerCamera, enumSignalSource, OutputMapping_CamTrigger0_SelectTrigger)
    ROUTE(gpo0, enumSignalSource, OutputMapping_SelectGPO_Select0)
    ROUTE(gpo1, enumSignalSource, OutputMapping_SelectGPO_Select1)
    ROUTE(gpo2, enumSignalSource, OutputMapping_SelectGPO_Select2)
    ROUTE(gpo3, enumSignalSource, OutputMapping_SelectGPO_Select3)
    ROUTE(gpo4, enumSignalSource, OutputMapping_SelectGPO_Select4)
    ROUTE(gpo5, enumSignalSource, OutputMapping_SelectGPO_Select5)
    ROUTE(gpo6, enumSignalSource, OutputMapping_SelectGPO_Select6)
    ROUTE(gpo7, enumSignalSource, OutputMapping_SelectGPO_Select7)
    ROUTE(frontGpo0, enumSignalSource, OutputMapping_SelectFrontGPO_Select0)
    ROUTE(frontGpo1, enumSignalSource, OutputMapping_SelectFrontGPO_Select1)
    ROUTE(signalAnalyzer0, enumSignalSourceExtended, Analyzer_Analyzer0_Select)
    ROUTE(signalAnalyzer1, enumSignalSourceExtended, Analyzer_Analyzer1_Select)
    ROUTE(customSignalEvent0, enumSignalSourceExtended, Events_SelectCustomSignalEvent0)
    ROUTE(customSignalEvent1, enumSignalSourceExtended, Events_SelectCustomSignalEvent1)
#undef ROUTE
};

void FgLoomWrapperImpl::applyRoute(const SignalRoute& route, std::uint32_t source, std::uint32_t polarity) {
    const DesignSignal signal = resolveSignalSource(source, polarity);
    (this->*route.writeSelect)(signal.select);
    (this->*route.writeInvert)(signal.invert);
    // Stored only now: after a failure the pair is as the design last accepted it.
    this->*route.source = source;
    this->*route.polarity = polarity;
}

void FgLoomWrapperImpl::setSource(const SignalRoute& route, std::uint32_t source) {
    requireEntry(route.sources, source);
    applyRoute(route, source, this->*route.polarity);
}

void FgLoomWrapperImpl::setPolarity(const SignalRoute& route, std::uint32_t polarity) {
    requireEntry(enumPolarity, polarity);
    applyRoute(route, this->*route.source, polarity);
}

// clang-format off
void FgLoomWrapperImpl::set_FG_TRIGGERCAMERA_SOURCE(std::uint32_t value) { setSource(SignalRoutes::triggerCamera, value); }
void FgLoomWrapperImpl::set_FG_TRIGGERCAMERA_POLARITY(std::uint32_t value) { setPolarity(SignalRoutes::triggerCamera, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_GPO_0_SOURCE(std::uint32_t value) { setSource(SignalRoutes::gpo0, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_GPO_0_POLARITY(std::uint32_t value) { setPolarity(SignalRoutes::gpo0, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_GPO_1_SOURCE(std::uint32_t value) { setSource(SignalRoutes::gpo1, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_GPO_1_POLARITY(std::uint32_t value) { setPolarity(SignalRoutes::gpo1, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_GPO_2_SOURCE(std::uint32_t value) { setSource(SignalRoutes::gpo2, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_GPO_2_POLARITY(std::uint32_t value) { setPolarity(SignalRoutes::gpo2, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_GPO_3_SOURCE(std::uint32_t value) { setSource(SignalRoutes::gpo3, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_GPO_3_POLARITY(std::uint32_t value) { setPolarity(SignalRoutes::gpo3, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_GPO_4_SOURCE(std::uint32_t value) { setSource(SignalRoutes::gpo4, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_GPO_4_POLARITY(std::uint32_t value) { setPolarity(SignalRoutes::gpo4, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_GPO_5_SOURCE(std::uint32_t value) { setSource(SignalRoutes::gpo5, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_GPO_5_POLARITY(std::uint32_t value) { setPolarity(SignalRoutes::gpo5, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_GPO_6_SOURCE(std::uint32_t value) { setSource(SignalRoutes::gpo6, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_GPO_6_POLARITY(std::uint32_t value) { setPolarity(SignalRoutes::gpo6, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_GPO_7_SOURCE(std::uint32_t value) { setSource(SignalRoutes::gpo7, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_GPO_7_POLARITY(std::uint32_t value) { setPolarity(SignalRoutes::gpo7, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_FRONT_GPO_0_SOURCE(std::uint32_t value) { setSource(SignalRoutes::frontGpo0, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_FRONT_GPO_0_POLARITY(std::uint32_t value) { setPolarity(SignalRoutes::frontGpo0, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_FRONT_GPO_1_SOURCE(std::uint32_t value) { setSource(SignalRoutes::frontGpo1, value); }
void FgLoomWrapperImpl::set_FG_TRIGGEROUT_FRONT_GPO_1_POLARITY(std::uint32_t value) { setPolarity(SignalRoutes::frontGpo1, value); }
void FgLoomWrapperImpl::set_FG_SIGNAL_ANALYZER_0_SOURCE(std::uint32_t value) { setSource(SignalRoutes::signalAnalyzer0, value); }
void FgLoomWrapperImpl::set_FG_SIGNAL_ANALYZER_0_POLARITY(std::uint32_t value) { setPolarity(SignalRoutes::signalAnalyzer0, value); }
void FgLoomWrapperImpl::set_FG_SIGNAL_ANALYZER_1_SOURCE(std::uint32_t value) { setSource(SignalRoutes::signalAnalyzer1, value); }
void FgLoomWrapperImpl::set_FG_SIGNAL_ANALYZER_1_POLARITY(std::uint32_t value) { setPolarity(SignalRoutes::signalAnalyzer1, value); }
void FgLoomWrapperImpl::set_FG_CUSTOM_SIGNAL_EVENT_0_SOURCE(std::uint32_t value) { setSource(SignalRoutes::customSignalEvent0, value); }
void FgLoomWrapperImpl::set_FG_CUSTOM_SIGNAL_EVENT_0_POLARITY(std::uint32_t value) { setPolarity(SignalRoutes::customSignalEvent0, value); }
void FgLoomWrapperImpl::set_FG_CUSTOM_SIGNAL_EVENT_1_SOURCE(std::uint32_t value) { setSource(SignalRoutes::customSignalEvent1, value); }
void FgLoomWrapperImpl::set_FG_CUSTOM_SIGNAL_EVENT_1_POLARITY(std::uint32_t value) { setPolarity(SignalRoutes::customSignalEvent1, value); }
// clang-format on

// ---- The legacy view of two outputs as two bits

void FgLoomWrapperImpl::set_FG_DIGIO_OUTPUT(std::int32_t value) {
    requireRange(value, limitsOf<Int>(FG_DIGIO_OUTPUT));
    if (value < 0) return; // no output changes
    set_FG_TRIGGEROUT_GPO_3_SOURCE((value & 1) != 0 ? VCC : GND);
    set_FG_TRIGGEROUT_GPO_7_SOURCE((value & 2) != 0 ? VCC : GND);
}

std::int32_t SignalRouting::digitalOutput() const {
    if (!isStatic(m_gpo3Source) || !isStatic(m_gpo7Source)) return -1;
    return (m_gpo3Source == VCC ? 1 : 0) | (m_gpo7Source == VCC ? 2 : 0);
}

void FgLoomWrapperImpl::set_FG_CLHS_TRIGGER_PULSE_MESSAGE(std::uint32_t value) {
    requireEntry(enumPulseMessage, value);
    Replacement stored(m_clhsTriggerPulseMessage, value);
    loomSet_Process1_Trigger_OutputMapping_CamTrigger0_CLHSTrigger_EnablePulseWidth_Value(
        std::uint32_t{value == FG_PULSE_WIDTH});
    stored.keep();
}
