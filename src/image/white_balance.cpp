// White balance: a gain for each colour component, handed to the design unrounded.

#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"

using namespace catalogue;

void FgLoomWrapperImpl::set_FG_SCALINGFACTOR_RED(double value) {
    requireRange(value, limitsOf<Double>(FG_SCALINGFACTOR_RED));
    Replacement stored(m_scalingFactorRed, value);
    loomSet_Process0_WhiteBalance_White_RedCoefficient(value);
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_SCALINGFACTOR_BLUE(double value) {
    requireRange(value, limitsOf<Double>(FG_SCALINGFACTOR_BLUE));
    Replacement stored(m_scalingFactorBlue, value);
    loomSet_Process0_WhiteBalance_White_BlueCoefficient(value);
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_SCALINGFACTOR_GREEN(double value) {
    requireRange(value, limitsOf<Double>(FG_SCALINGFACTOR_GREEN));
    Replacement stored(m_scalingFactorGreen, value);
    loomSet_Process0_WhiteBalance_White_GreenCoefficient(value);
    stored.keep();
}
