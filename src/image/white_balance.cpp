// White balance: a gain for each colour component, passed to the design unrounded.

#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"

using namespace catalogue;

void FgLoomWrapperImpl::set_FG_SCALINGFACTOR_RED(double value) {
    requireRange(value, limitsOf<Double>(FG_SCALINGFACTOR_RED));
    storeAndWrite(m_scalingFactorRed, value,
                  &FgLoomWrapperImpl::loomSet_Process0_WhiteBalance_White_RedCoefficient);
}

void FgLoomWrapperImpl::set_FG_SCALINGFACTOR_BLUE(double value) {
    requireRange(value, limitsOf<Double>(FG_SCALINGFACTOR_BLUE));
    storeAndWrite(m_scalingFactorBlue, value,
                  &FgLoomWrapperImpl::loomSet_Process0_WhiteBalance_White_BlueCoefficient);
}

void FgLoomWrapperImpl::set_FG_SCALINGFACTOR_GREEN(double value) {
    requireRange(value, limitsOf<Double>(FG_SCALINGFACTOR_GREEN));
    storeAndWrite(m_scalingFactorGreen, value,
                  &FgLoomWrapperImpl::loomSet_Process0_WhiteBalance_White_GreenCoefficient);
}
