/** The image trigger and the flash. */
#ifndef TRIGGER_IMAGE_TRIGGER_H
#define TRIGGER_IMAGE_TRIGGER_H

#include "vexo/fg_parameters.h"

#include <cstdint>

struct ImageTrigger {
    std::uint32_t m_imgTriggerMode;
    std::uint32_t m_imgTriggerOn;
    std::uint32_t m_flashOn;
    std::uint32_t m_imgTriggerAsyncHeight; // lines
    std::uint32_t m_imgTriggerInSrc;
    std::uint32_t m_imgTriggerInPolarity;
    std::uint32_t m_imgTriggerGateDelay; // lines
    double m_imgTriggerDebouncing;       // microseconds
    std::uint32_t m_flashPolarity;
    std::uint32_t m_strobePulseDelay; // lines
    std::uint32_t m_sendSoftwareTrigger = FG_APPLY;
    std::uint32_t m_setSoftwareTrigger;
};

#endif
