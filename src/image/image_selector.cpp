// Image selector: passes on one image of each period, the one with a given phase.

#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"

using namespace catalogue;

namespace {

constexpr UInt periodLimits = limitsOf<UInt>(FG_IMG_SELECT_PERIOD);
constexpr UInt phaseLimits = limitsOf<UInt>(FG_IMG_SELECT);

} // namespace

void FgLoomWrapperImpl::set_FG_IMG_SELECT_PERIOD(std::uint32_t value) {
    requireRange(value, periodLimits);
    Replacement stored(m_imgSelectPeriod, value);
    if (value <= m_imgSelect) refuse(FG_ERR_OUT_OF_RANGE);
    loomSet_Process0_ImageSelector_FG_IMG_SELECT_PERIOD_Divisor(value);
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_IMG_SELECT(std::uint32_t value) {
    requireRange(value, phaseLimits);
    Replacement stored(m_imgSelect, value);
    if (m_imgSelectPeriod <= value) refuse(FG_ERR_OUT_OF_RANGE);
    loomSet_Process0_ImageSelector_FG_IMG_SELECT_PHASE_Number(value);
    stored.keep();
}
