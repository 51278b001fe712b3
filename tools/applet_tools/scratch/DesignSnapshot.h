/** A snapshot of the design's values on a scratch board, to find changes. */
#ifndef APPLET_TOOLS_SCRATCH_DESIGNSNAPSHOT_H
#define APPLET_TOOLS_SCRATCH_DESIGNSNAPSHOT_H

#include "applet_tools/scratch/ScratchSession.h"

#include <map>
#include <string>
#include <vector>

namespace applet_tools {

/** A changed value of the design. */
struct DesignChange {
    std::string parameter; /**< without prefix: "Device1_..." */
    Value before, after;   /**< numbers; for an array its size, and the number of changed elements */

    bool operator==(const DesignChange&) const = default;
};

/** Numbers of the design by name; for an array its elements. */
class DesignSnapshot {
public:
    explicit DesignSnapshot(ScratchSession& session);

    const std::map<std::string, Value>& numbers() const { return m_numbers; }
    const std::map<std::string, Elements>& arrays() const { return m_arrays; }
    /** Differences to `later`, sorted by name. */
    std::vector<DesignChange> changesTo(const DesignSnapshot& later) const;

private:
    std::map<std::string, Value> m_numbers;
    std::map<std::string, Elements> m_arrays;
};

/** "Device1_Process0_Buffer_0_XLength: 1024 -> 2048"; of an array "16384 elements -> 256 others". */
std::string inWords(const DesignChange& change);
std::string beforeInWords(const DesignChange& change);
std::string afterInWords(const DesignChange& change);

nlohmann::ordered_json asJson(const std::vector<DesignChange>& changes);

} // namespace applet_tools

#endif
