// The time-out of an acquisition, which the wrapper keeps for the client; the design has no such parameter.

#include "entry/FgLoomWrapperImpl.h"
#include "entry/setter_tools.h"

void FgLoomWrapperImpl::set_FG_TIMEOUT(std::uint32_t value) {
    requireRange(value, catalogue::limitsOf<catalogue::UInt>(FG_TIMEOUT));
    m_timeout = value;
}
