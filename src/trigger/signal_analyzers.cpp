// Signal analyzers: periods and pulses of two routed signals. Most results are read directly from the design,
// by the rows of the parameters.

#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"

using namespace catalogue;

std::int64_t FgLoomWrapperImpl::readPulseCountDifference() {
    // The design's counter is signed and has 33 bits.
    constexpr std::uint64_t sign = std::uint64_t{1} << 32;
    const auto counted =
        static_cast<std::uint64_t>(loomGet_Process1_Trigger_Analyzer_Difference_Status<std::int64_t>());
    return static_cast<std::int64_t>((counted & sign) != 0 ? counted | ~(sign - 1) : counted);
}

void FgLoomWrapperImpl::set_FG_SIGNAL_ANALYZER_CLEAR(std::uint32_t value) {
    requireEntry(enumApply, value);
    Replacement stored(m_signalAnalyzerClear, value);
    // One pulse for both analyzers.
    loomSet_Process1_Trigger_Analyzer_Clear_Value(std::uint32_t{1});
    loomSet_Process1_Trigger_Analyzer_Clear_Value(std::uint32_t{0});
    stored.keep();
}
