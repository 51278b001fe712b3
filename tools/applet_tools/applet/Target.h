/** What a word of the command line names: a parameter, or elements of an array parameter. */
#ifndef APPLET_TOOLS_APPLET_TARGET_H
#define APPLET_TOOLS_APPLET_TARGET_H

#include "applet_tools/applet/ParameterList.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace applet_tools {

/** Elements of an array, the last one included. */
struct ElementRange {
    std::uint32_t first;
    std::uint32_t last;

    std::uint32_t count() const { return last - first + 1; }
};

/** `elements` is empty for a scalar and for an array as a whole. */
struct Target {
    const Parameter* parameter;
    std::optional<ElementRange> elements = std::nullopt;

    /** "FG_WIDTH", "FG_LUT_VALUE_RED[100]", "FG_LUT_VALUE_RED[100..110]". */
    std::string name() const;
};

/** "FG_LUT_VALUE_RED[100]". */
std::string elementName(const Parameter& parameter, std::uint32_t index);

/** Number of elements of an array parameter; 0 for all others. */
std::uint32_t elementCount(const Parameter& parameter);

/** Reads "NAME", "NAME[5]", "NAME[5..9]"; an end that is left out is the array's own, as in "NAME[..9]".
 *  Throws UsageError for an unknown name and for elements that the parameter has not. */
Target findTarget(const ParameterList& parameters, std::string_view word);

/** Reads all words before anything else is done, so that a misspelt one stops all. A word with * or ? is a pattern.
 *  Of its parameters those are left out of which a read takes something from the board. */
std::vector<Target> findTargets(const ParameterList& parameters, const std::vector<std::string>& words);

/** The parameters of the named groups, without those of which a read takes something from the board. */
std::vector<Target> targetsOfGroups(const ParameterList& parameters, const std::vector<std::string>& labels);

} // namespace applet_tools

#endif
