/** The line trigger and the ExSync pulse. */
#ifndef TRIGGER_LINE_TRIGGER_H
#define TRIGGER_LINE_TRIGGER_H

#include <cstdint>

struct LineTrigger {
    std::uint32_t m_lineTriggerMode;
    std::uint32_t m_exsyncOn;
    std::uint32_t m_lineTriggerInSrc;
    std::uint32_t m_lineTriggerInPolarity;
    double m_lineTriggerDebouncing;    // microseconds
    std::uint32_t m_lineDownscale;     // pulses
    std::uint32_t m_lineDownscaleInit; // pulses
    double m_linePeriode;              // microseconds
    double m_lineExposure;             // microseconds
    std::uint32_t m_exsyncPolarity;
    double m_lineTriggerDelay; // microseconds

    double exposureLimit() const;
};

#endif
