/** The causes of the ends of a parameter's range, found by trying. */
#ifndef APPLET_TOOLS_SCRATCH_PROBE_LIMIT_CAUSES_H
#define APPLET_TOOLS_SCRATCH_PROBE_LIMIT_CAUSES_H

#include "applet_tools/scratch/probe/measured_range.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace applet_tools {

/** A parameter, or an array element, by index: records may become invalid (see Probe). */
struct Subject {
    std::size_t index;
    std::optional<ElementRange> elements = std::nullopt;
    bool isWholeArray = false; // tested with the first element

    Target in(const Probe& probe) const { return {&probe.at(index), elements}; }
};

/** A single change of another parameter, and the resulting limit. */
struct Widening {
    std::string parameter; /**< the changed parameter */
    std::string with;      /**< "FG_XOFFSET=64" */
    Value limit;
};

/** A value of the design that the setter reads and that moves the limit. */
struct DesignCause {
    std::string parameter;
    std::string value;
};

/** The causes of one end of a range. */
struct LimitCauses {
    std::vector<Widening> parameters;
    std::vector<DesignCause> design;
    bool isEndOfType = false; /**< the type has no numbers beyond the limit */
};

LimitCauses causesOf(Probe& probe, const Subject& subject, const MeasuredRange& range, End end);

/** "the memory of the board", "the design". */
std::string shortWords(const DesignCause& cause);
/** "the memory of the board (Device1_... is 20)". */
std::string inWords(const DesignCause& cause);
/** True if no change that was tried widens the range at this end. */
bool isUnmoved(const LimitCauses& causes);
/** Why there is no cause of this end of the range; empty if there is one. */
std::string fixedInWords(const LimitCauses& causes, End end);
/** The same for both ends, where no change moves either. */
inline constexpr const char* neitherWidened =
    "no other parameter and no value of the design that was tried widens them";

/** [{"limit": "maximum", "parameter", "with", "becomes"}, {"limit": "maximum", "design", "value"}, ...]. */
nlohmann::ordered_json asJson(const LimitCauses& causes, End end);

const char* nameOf(End end);

} // namespace applet_tools

#endif
