/** Sources and polarities as last written to the design; a load stores those of the camera trigger first. */
#ifndef TRIGGER_SIGNAL_ROUTING_H
#define TRIGGER_SIGNAL_ROUTING_H

#include <cstdint>

struct SignalRouting {
    std::uint32_t m_triggerCameraSource, m_triggerCameraPolarity;
    std::uint32_t m_gpo0Source, m_gpo0Polarity;
    std::uint32_t m_gpo1Source, m_gpo1Polarity;
    std::uint32_t m_gpo2Source, m_gpo2Polarity;
    std::uint32_t m_gpo3Source, m_gpo3Polarity;
    std::uint32_t m_gpo4Source, m_gpo4Polarity;
    std::uint32_t m_gpo5Source, m_gpo5Polarity;
    std::uint32_t m_gpo6Source, m_gpo6Polarity;
    std::uint32_t m_gpo7Source, m_gpo7Polarity;
    std::uint32_t m_frontGpo0Source, m_frontGpo0Polarity;
    std::uint32_t m_frontGpo1Source, m_frontGpo1Polarity;
    std::uint32_t m_signalAnalyzer0Source, m_signalAnalyzer0Polarity;
    std::uint32_t m_signalAnalyzer1Source, m_signalAnalyzer1Polarity;
    std::uint32_t m_customSignalEvent0Source, m_customSignalEvent0Polarity;
    std::uint32_t m_customSignalEvent1Source, m_customSignalEvent1Polarity;
    std::uint32_t m_clhsTriggerPulseMessage;
    std::uint32_t m_signalAnalyzerClear;

    std::int32_t digitalOutput() const;
};

#endif
