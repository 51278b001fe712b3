/** The camera simulator: the requested values, and those of its counters. */
#ifndef IMAGE_CAMERA_SIMULATOR_H
#define IMAGE_CAMERA_SIMULATOR_H

#include <cstdint>

struct CameraSimulator {
    std::uint32_t m_simEnable;
    std::uint32_t m_simLineGap = 0;   // pixels, like the two below as requested
    std::uint32_t m_simHeight = 1024; // lines
    std::uint32_t m_simFrameGap = 0;  // lines
    std::uint32_t m_simPattern;
    std::uint32_t m_simPatternOffset; // grey levels
    std::uint32_t m_simRoll;
    std::uint32_t m_simSelectMode;
    double m_simPixelFrequency = 39.375; // MHz, like the two below as requested
    double m_simLineRate = 10240.0;      // Hz
    double m_simFrameRate = 10.0;        // Hz
    std::uint32_t m_simTriggerMode;
    // Values of the counters, after rounding.
    std::uint32_t m_simAppliedWidth = 1024; // pixels
    std::uint32_t m_simAppliedLineGap = 0;  // pixels
    std::uint32_t m_simAppliedFrameGap = 0; // lines
    double m_simAppliedFrameRate = 10.0;    // Hz, what frame rate mode starts from

    std::uint32_t simulatorLineGap() const;
    std::uint32_t simulatorFrameGap() const;
    std::uint32_t simulatorFrameGapLimit() const;
    double simulatorLineRateLimit() const;
    double simulatorFrameRateLimit() const;
};

#endif
