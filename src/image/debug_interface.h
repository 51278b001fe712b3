/** The points where images can be injected and observed. */
#ifndef IMAGE_DEBUG_INTERFACE_H
#define IMAGE_DEBUG_INTERFACE_H

#include "vexo/fg_parameters.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

struct DebugInterface {
    /** A point of the image path where images can be injected and, at some points, observed. */
    struct DebugEntry {
        enum Type : std::uint32_t { inject, injectMonitor, unknown };
        Type type = unknown;
        std::string name;
        std::string path; // its part in the names of design parameters
    };
    std::vector<DebugEntry> m_debugEntries;
    std::uint32_t m_debugSource = 0;
    std::uint32_t m_debugInsert = FG_APPLY;
    std::uint64_t m_debugWritePixel = 0;
    std::uint32_t m_debugWriteFlag = FG_ENDOFLINE;
    std::size_t m_longestDebugFile = 0; // that the design accepted
    std::string m_debugSaveConfig;

    /** The current point; one of unknown type if there is none. */
    const DebugEntry& debugEntry() const;

    std::string debugSourceName() const { return debugEntry().name; }
    std::string debugVersion() const { return "1.0"; }
};

#endif
