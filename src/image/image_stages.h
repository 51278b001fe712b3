/** The simple stages of the image path: pixel format and line order, image selector, white balance. */
#ifndef IMAGE_IMAGE_STAGES_H
#define IMAGE_IMAGE_STAGES_H

#include "vexo/fg_parameters.h"

#include <cstdint>

struct ImageStages {
    std::uint32_t m_pixelFormat;
    std::uint32_t m_lineOrder = FG_LINEORDER_RGB;
    std::uint32_t m_imgSelectPeriod; // images
    std::uint32_t m_imgSelect;       // images
    double m_scalingFactorRed;
    double m_scalingFactorBlue;
    double m_scalingFactorGreen;
};

#endif
