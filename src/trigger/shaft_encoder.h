/** The shaft encoder filter. */
#ifndef TRIGGER_SHAFT_ENCODER_H
#define TRIGGER_SHAFT_ENCODER_H

#include <cstdint>

struct ShaftEncoder {
    std::uint32_t m_shaftEncoderOn;
    std::uint32_t m_shaftEncoderMode;
    std::uint32_t m_shaftEncoderInSrc;
    std::uint32_t m_shaftEncoderLeading;
    std::uint32_t m_shaftEncoderCompensationEnable;
};

#endif
